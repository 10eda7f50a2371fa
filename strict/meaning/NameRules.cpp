#include "strict/meaning/NameRules.hpp"

#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "io/formats/InputFormats.hpp"
#include "parser/commands/CmdWriteFile.hpp"
#include "platform/Replace.hpp"
#include "strict/script/OutputFormat.hpp"

namespace Strict {

namespace {

using Parser::Part;
using Parser::Role;
using Parser::Statement;
using Parser::WrapperLib::CmdWriteFile;
using Parser::WrapperLib::ExportFormat;

/// A text argument without its delimiters and the blanks in them.
std::string_view undelimited(std::string_view text) {
    constexpr std::string_view delimiters = " \t\n\v\f\r{}\"'";
    const std::size_t first = text.find_first_not_of(delimiters);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(delimiters) + 1 - first);
}

bool isLower(char c) {
    return c >= 'a' && c <= 'z';
}

bool isUpper(char c) {
    return c >= 'A' && c <= 'Z';
}

/// "versionText", "FW_VERSION": one word of letters, digits and underscores whose parts are
/// recognisable.
bool isLikeVariable(std::string_view word) {
    if (word.empty() || !(isLower(word.front()) || isUpper(word.front()))) return false;
    bool hasJoint = false;
    for (std::size_t i = 0; i < word.size(); ++i) {
        const bool isDigit = word[i] >= '0' && word[i] <= '9';
        if (!isLower(word[i]) && !isUpper(word[i]) && !isDigit && word[i] != '_') return false;
        if (i == 0) continue;
        hasJoint = hasJoint || (isLower(word[i - 1]) && isUpper(word[i]));
        hasJoint = hasJoint || (word[i - 1] == '_' && isUpper(word[i]));
    }
    return hasJoint;
}

/// The ending is that of a format which is read and not written, and of no other files.
bool isOnlyRead(std::string_view path) {
    const auto* const row = Io::Formats::rowByEnding(path);
    return row != nullptr && Io::Formats::hasEnding(path, row->endings);
}

/// A device of the system, such as NUL of Windows.
bool isDevice(std::string_view path) {
    return Platform::outputTarget(std::string(path)).kind == Platform::TargetKind::Device;
}

}  // namespace

void checkRepeatedOptions(const Step& step) {
    Parser::Roles seen;
    std::set<std::uint32_t> options;
    for (const Part& part : step.statement.parts) {
        if (!onlyOnce.has(part.role)) continue;
        const bool isRepeated =
            part.role == Role::Option ? !options.insert(part.choice).second : seen.has(part.role);
        if (isRepeated)
            step.findings.report(Kind::RepeatedOption,
                                 "this option is given more than once, and the last one counts",
                                 part.text, "remove the others");
        seen.add(part.role);
    }
}

void checkFormatEnding(const Step& step) {
    const Part* const file = step.statement.last(Role::OutputFile);
    const Part* const option = step.statement.last(Role::Format);
    const ExportFormat* const format = &outputFormatOf(step.statement);
    const std::string_view path = undelimited(file->text);
    if (path.find('.') == std::string_view::npos) return;
    const ExportFormat* const other = CmdWriteFile::formatByEnding(path);
    const bool isForeign = other == nullptr && isOnlyRead(path);
    if ((other == nullptr && !isForeign) || other == format || format->suits(path)) return;
    const std::string ending(path.substr(path.rfind('.')));
    Diagnostic diagnostic{
        Kind::FormatEnding,
        "the name ends in " + ending + ", and the file is written as " + format->keyword};
    if (other != nullptr)
        diagnostic.hint = "for " + ending + ", give -setFormat=" +
                          (other->choice != nullptr      ? other->choice
                           : other->usualForm != nullptr ? other->usualForm
                                                         : other->keyword);
    if (option != nullptr) diagnostic.usual = Severity::Warning;
    step.findings.report(std::move(diagnostic), file->text);
}

void checkBareWords(const Step& step) {
    for (const Part& part : step.statement.parts) {
        const bool isFile = part.role == Role::OutputFile;
        // One word is usual among the arguments of a program.
        const bool isText = part.role == Role::Text && !step.has(Role::Program);
        if (!isFile && part.role != Role::String && !isText) continue;
        const std::string_view word = undelimited(part.text);
        const bool isBare =
            isFile ? word.find_first_of("./\\") == std::string_view::npos : isLikeVariable(word);
        if (word.empty() || !isBare || step.findings.isFromVariable(part.text)) continue;
        if (isFile && isDevice(word)) continue;
        step.findings.report(Kind::BareWord,
                             std::string(isFile ? "the file is called " : "the text is ") +
                                 std::string(word) + ", which may be a variable's name",
                             part.text, "was the variable " + std::string(word) + " given?");
    }
}

}  // namespace Strict
