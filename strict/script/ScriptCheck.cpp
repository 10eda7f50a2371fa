#include "strict/script/ScriptCheck.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "parser/commands/CmdNewHash.hpp"
#include "parser/commands/Conventions.hpp"
#include "platform/Paths.hpp"
#include "strict/diagnostics/Suggestion.hpp"
#include "strict/script/Directives.hpp"
#include "strict/script/KeywordsOfC.hpp"
#include "strict/script/NumberCheck.hpp"
#include "strict/script/OutputFormat.hpp"
#include "strict/script/TypographicQuote.hpp"

namespace Strict {

namespace {

using Parser::Part;
using Parser::Role;
using Parser::Statement;
using Parser::WrapperLib::CmdWriteFile;
using Parser::WrapperLib::ExportFormat;

bool isNumber(std::string_view text) {
    return !text.empty() && text.front() >= '0' && text.front() <= '9';
}

/// Whether the type of a hash, by its keyword, has no function.
bool computesNothing(std::string_view type) {
    const auto types = Parser::WrapperLib::CmdNewHash::types();
    const auto row =
        std::ranges::find_if(types, [type](const auto& known) { return type == known.keyword; });
    return row != types.end() && row->compute == nullptr;
}

/// An option of WRITE_FILE that some formats use and all take.
struct Setting {
    Role role;
    std::uint32_t choice;  ///< of the part
    const char* option;
    bool ExportFormat::*isUsed;
};

constexpr std::array settings{
    Setting{Role::Template, 0, "-setElfTemplate", &ExportFormat::needsTemplate},
    Setting{Role::ArrayName, 0, "-setArrayName", &ExportFormat::isArray},
    Setting{Role::GuardName, 0, "-setIncludeGuard", &ExportFormat::isArray},
    Setting{Role::Header, 0, "-setHeaderText", &ExportFormat::hasHeaderText},
    Setting{Role::Option, static_cast<std::uint32_t>(Parser::UsbId::Vendor), "-setVendorId",
            &ExportFormat::hasUsbIds},
    Setting{Role::Option, static_cast<std::uint32_t>(Parser::UsbId::Product), "-setProductId",
            &ExportFormat::hasUsbIds},
};

/// The formats that use a setting, in words.
std::string usersOf(const Setting& setting) {
    std::vector<std::string> users;
    for (const ExportFormat& format : CmdWriteFile::formats())
        if (format.*setting.isUsed) users.emplace_back(format.keyword);
    std::string text;
    for (std::size_t i = 0; i < users.size(); ++i)
        text += (i == 0 ? "" : i + 1 == users.size() ? " or " : ", ") + users[i];
    return text;
}

}  // namespace

void ScriptCheck::check(const ParsedScript& parsed) {
    keywords_ = parsed.keywords();
    keywords_.insert(keywords_.end(), {includeWord, parameterWord});
    const auto& statements = parsed.statements();
    auto broken = parsed.broken().begin();
    auto calculation = parsed.calculations().begin();
    const auto checkCalculationsBefore = [&](std::size_t offset) {
        for (;
             calculation != parsed.calculations().end() && script_->offsetOf(*calculation) < offset;
             ++calculation) {
            reportFound();
            checkCalculation(*calculation);
        }
    };
    for (std::size_t i = 0; i <= statements.size(); ++i) {
        for (; broken != parsed.broken().end() && broken->statementsBefore == i; ++broken) {
            if (i != 0 && isBroken(statements[i - 1], *broken)) pending_.clear();
            checkCalculationsBefore(broken->offset);
            reportFound();
            makeNames(broken->begun);
            sink_->take(broken->diagnostic);
        }
        const bool isLast = i == statements.size();
        checkCalculationsBefore(isLast ? script_->prepared().size()
                                       : script_->offsetOf(statements[i].text));
        reportFound();
        if (!isLast) check(statements[i]);
    }
}

void ScriptCheck::check(const Statement& statement) {
    checkNames(statement);
    checkHash(statement);
    checkSignature(statement);
    checkTexts(statement);
    checkEffects(statement);
    checkSettings(statement);
    checkSymbols(statement);
    NumberCheck(*script_, pending_).checkBefore(statement);
}

bool ScriptCheck::isBroken(const Statement& last, const BrokenText& broken) const {
    const std::string_view text = script_->prepared();
    const std::size_t lastEnd = script_->offsetOf(last.text) + last.text.size();
    const std::size_t end = text.find_last_not_of(" \t\n\v\f\r", lastEnd - 1) + 1;
    return broken.offset <= end ||
           text.substr(end, broken.offset - end).find('\n') == std::string_view::npos;
}

/// What a statement that does not parse would have made counts as known.
void ScriptCheck::makeNames(std::span<const Part> parts) {
    for (const Part& part : parts) {
        if (part.role == Role::MakesImage) images_.try_emplace(std::string(part.text), part.text);
        if (Parser::makesValue.has(part.role))
            values_[Parser::valueKindOf(part.role)->uses].try_emplace(std::string(part.text),
                                                                      part.text);
    }
}

/// A statement sees the names of those before it, so what it makes comes last.
void ScriptCheck::checkNames(const Statement& statement) {
    for (const Part& part : statement.parts) checkUse(part);
    for (const Part& part : statement.parts) {
        if (part.role == Role::MakesImage) define(images_, part.text, "an image");
        if (!Parser::makesValue.has(part.role)) continue;
        const Parser::ValueKind& kind = *Parser::valueKindOf(part.role);
        define(values_[kind.uses], part.text, std::string("a ") + kind.word);
    }
}

void ScriptCheck::checkUse(const Part& part) {
    constexpr Parser::Roles ofImages{Role::UsesImage, Role::ChangesImage};
    if (ofImages.has(part.role)) use(images_, part.text, "image");
    // A signature has a length as well.
    if (part.role == Role::MeasuresImage && !values_[Role::UsesSignature].contains(part.text))
        use(images_, part.text, "image");
    if (part.role == Role::UsesValue) useValue(part.text);
    if (Parser::usesValue.has(part.role))
        use(values_[part.role], part.text, Parser::valueKindOf(part.role)->word);
}

/// A name that may be that of a value of any kind.
void ScriptCheck::useValue(std::string_view name) {
    const auto has = [name](const auto& entry) { return entry.second.contains(name); };
    if (std::ranges::any_of(values_, has)) return;
    Names all;
    for (const auto& [kind, names] : values_) all.insert(names.begin(), names.end());
    use(all, name, "CRC, hash or signature");
}

void ScriptCheck::checkHash(const Statement& statement) {
    if (!statement.has(Role::MakesHash)) return;
    const std::string_view type = statement.textOf(Role::Type);
    if (type.empty())
        report(Kind::EmptyDigest, "the hash has no -setType and computes nothing",
               statement.textOf(Role::MakesHash), "add -setType=Hash_Sha2_256 or another type");
    else if (computesNothing(type))
        report(Kind::EmptyDigest, std::string(type) + " computes nothing", type,
               "choose another type");
}

/// A statement that signs or verifies has a type and a key.
void ScriptCheck::checkSignature(const Statement& statement) {
    using Parser::WrapperLib::CmdType;
    const bool isTaken = statement.roles.hasAny({Role::InputFile, Role::Stored});
    const bool hasKey = (statement.has(Role::MakesSignature) && !isTaken) ||
                        statement.kind == CmdType::VerifySignature;
    if (!hasKey) return;
    const std::string_view keyword = statement.parts.front().text;
    if (!statement.has(Role::Type))
        report(Kind::Key, "the statement does not name the type of the signature", keyword,
               "add -setType=Ed25519 or another type");
    if (!statement.has(Role::KeyFile))
        report(Kind::Key, "the statement has no key", keyword, "add -setKeyFile=FILE");
}

void ScriptCheck::define(Names& names, std::string_view name, const std::string& what) {
    const auto [entry, isNew] = names.try_emplace(std::string(name), name);
    if (isNew || !pending_.wants(Kind::DuplicateName)) return;
    Diagnostic diagnostic{Kind::DuplicateName,
                          std::string("there is already ") + what + " called " + std::string(name),
                          script_->placeOf(name), "this one would be dropped"};
    diagnostic.notes.push_back({"the first one is made here", script_->placeOf(entry->second)});
    pending_.add(std::move(diagnostic));
}

void ScriptCheck::use(const Names& names, std::string_view name, const char* what) {
    if (names.contains(name)) return;
    std::vector<std::string> known;
    // Each suggestion walks through all names.
    constexpr std::size_t mostSuggestions = 100;
    if (suggestions_++ < mostSuggestions)
        for (const auto& [other, place] : names) known.push_back(other);
    std::string hint;
    std::optional<Correction> correction;
    if (const auto close = nearest(name, known)) {
        correction = {std::string(name), {*close}};
        const Place made = script_->placeOf(names.at(*close));
        const bool isHere = made.file == script_->placeOf(name).file;
        hint = "did you mean " + *close + " (" + (isHere ? "line " : made.file + ":") +
               std::to_string(made.line) + ")?";
    }
    report(Kind::UnknownName, "no " + std::string(what) + " is called " + std::string(name), name,
           hint, std::move(correction));
}

void ScriptCheck::checkTexts(const Statement& statement) {
    constexpr Parser::Roles files{Role::InputFile, Role::Template, Role::SymbolFile, Role::KeyFile,
                                  Role::OutputFile};
    for (const Part& part : statement.parts)
        if (files.has(part.role) || part.role == Role::Program || part.role == Role::Text ||
            part.role == Role::Header) {
            checkText(part);
            checkQuote(part);
        }
    for (const Part& part : statement.parts)
        if (files.has(part.role)) checkPath(part);
}

/// A text in braces or plain quotes may begin with any sign.
void ScriptCheck::checkQuote(const Part& part) {
    const auto quote = typographicQuoteIn(part.text);
    if (!quote || quote->at != 0) return;
    report(Kind::TypographicQuote,
           "this text begins with a typographic quote, a letter to the language", part.text,
           std::string("write the plain quote ") + quote->plain);
}

/// An input that has such a name is what was meant.
void ScriptCheck::checkPath(const Part& part) {
    if (Platform::pathSeparator == '\\' || part.text.find('\\') == std::string_view::npos) return;
    std::string path = Parser::WrapperLib::cleanedPath(std::string(part.text));
    if (part.role != Role::OutputFile && Platform::isRegularFile(path)) return;
    std::ranges::replace(path, '\\', '/');
    report(Kind::BackslashPath,
           "a backslash is a part of the name here and does not separate folders", part.text,
           "write " + path, Correction{std::string(part.text), {path}});
}

bool ScriptCheck::hasKeyword(std::string_view text) const {
    return std::ranges::any_of(keywords_, [text](std::string_view word) {
        return text.find(word) != std::string_view::npos;
    });
}

void ScriptCheck::checkText(const Part& part) {
    const std::size_t feed = part.text.find('\n');
    const bool isSwallowing = feed != std::string_view::npos && hasKeyword(part.text);
    const bool isStatement = std::ranges::find(keywords_, part.text) != keywords_.end();
    if (!isSwallowing && !isStatement) return;
    const std::string_view shown = part.text.substr(0, feed);
    const bool hasRemark = script_->placeOf(shown).excerpt.find("//") != std::string::npos;
    report(Kind::Swallowed,
           isStatement ? "the text of this statement is the next keyword"
                       : "this text goes on over the next statement",
           shown,
           hasRemark ? "a remark begins with //, in a text as well"
                     : "is a closing brace or the text missing?");
}

/// What follows the bracket is a part of the text, also in the same line.
void ScriptCheck::checkCalculation(std::string_view text) {
    if (!hasKeyword(text)) return;
    report(Kind::Swallowed, "the text of CALCULATE goes on over the next statement",
           text.substr(0, text.find('\n')), "it takes all up to the next ]: remove it");
}

void ScriptCheck::checkEffects(const Statement& statement) {
    const std::string_view section = statement.textOf(Role::Section);
    if (isNumber(section))
        report(Kind::ExecutionAddress,
               "-setExecutionAddress sets the name of a section, not a start address", section,
               "give the address without an option: " + std::string(section));
    if (statement.roles.has(Role::ChangesImage) && statement.has(Role::String) &&
        !statement.has(Role::Area))
        report(Kind::NoEffect, "WITH_STRING writes nothing without an area",
               statement.textOf(Role::String), "add -useAreas={{start, length}}");
    if (statement.has(Role::ValueSize) && !statement.roles.hasAny({Role::Bytes, Role::Filler}))
        report(Kind::NoEffect, "-setValueSize has no effect without a list of values",
               statement.textOf(Role::ValueSize));
    for (const Role role : {Role::ArrayName, Role::GuardName}) {
        if (!statement.has(role)) continue;
        const std::string_view name = statement.textOf(role);
        const bool isKeyword = isKeywordOfC(name);
        if (isKeyword || isTypeOfStdint(name))
            report(Kind::Outside,
                   std::string(role == Role::ArrayName ? "an array" : "a macro") +
                       " of C cannot have the name " + std::string(name),
                   name, isKeyword ? "it is a keyword of C or C++" : "it is a type of <stdint.h>");
    }
    const std::string_view guard = statement.textOf(Role::GuardName);
    const std::string_view array = statement.textOf(Role::ArrayName);
    if (!guard.empty() && guard == (array.empty() ? "image" : array))
        report(Kind::Outside, "the macro " + std::string(guard) + " would replace the array's name",
               guard, "a guard needs a name of its own");
}

/// The format of an output uses the settings that it is given.
void ScriptCheck::checkSettings(const Statement& statement) {
    if (!statement.has(Role::OutputFile)) return;
    const ExportFormat& format = outputFormatOf(statement);
    for (const Setting& setting : settings) {
        if (format.*setting.isUsed || !statement.has(setting.role)) continue;
        for (const Part& part : statement.all(setting.role))
            if (part.choice == setting.choice)
                report(Kind::NoEffect,
                       std::string(setting.option) +
                           " has no effect without -setFormat=" + usersOf(setting),
                       part.text);
    }
}

/// A name to resolve occurs in the text before the options.
void ScriptCheck::checkSymbols(const Statement& statement) {
    std::string_view before;
    for (const Part& part : statement.all(Role::UsesValue)) {
        if (before.empty())
            before = statement.text.substr(
                0, static_cast<std::size_t>(part.text.data() - statement.text.data()));
        if (before.find(part.text) == std::string_view::npos)
            report(Kind::SymbolUnused,
                   std::string(part.text) + " does not occur in the text of this statement",
                   part.text);
    }
}

void ScriptCheck::report(Kind kind, std::string text, std::string_view part, std::string hint,
                         std::optional<Correction> correction) {
    if (!pending_.wants(kind)) return;
    part = part.substr(0, part.find_last_not_of(" \t\n\v\f\r") + 1);
    Diagnostic diagnostic{kind, std::move(text), script_->placeOf(part), std::move(hint),
                          script_->variableNotes(part)};
    diagnostic.correction = std::move(correction);
    pending_.add(std::move(diagnostic));
}

}  // namespace Strict
