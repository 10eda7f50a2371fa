#include "strict/ScriptReading.hpp"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "inspect/Digest.hpp"
#include "parser/text/VariableExpansion.hpp"
#include "platform/Files.hpp"
#include "platform/Replace.hpp"
#include "strict/IncludedFile.hpp"
#include "strict/diagnostics/Suggestion.hpp"
#include "strict/files/WholeFile.hpp"

namespace Strict {

namespace {

std::string wordsFor(Facts::VariableFault fault) {
    switch (fault) {
        case Facts::VariableFault::NotARegularExpression:
            return "is not a valid regular expression";
        case Facts::VariableFault::TooComplex:
            return "is too complex a regular expression";
        case Facts::VariableFault::ScriptTooLong:
            break;
    }
    return "makes the script too long";
}

/// "did you mean X?" for a word of the script that is like `name`.
std::string likeWord(const ScriptText& script, const std::string& name) {
    constexpr std::size_t mostWords = 10'000;
    constexpr std::string_view letters =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";
    const std::string_view text = script.prepared();
    std::set<std::string> words;
    for (std::size_t at = text.find_first_of(letters);
         at != std::string_view::npos && words.size() < mostWords;) {
        const std::size_t end = std::min(text.find_first_not_of(letters, at), text.size());
        words.emplace(text.substr(at, end - at));
        at = text.find_first_of(letters, end);
    }
    const std::vector<std::string> list(words.begin(), words.end());
    const auto word = nearest(name, list);
    return word ? "did you mean " + *word + "?" : "";
}

/// A dollar sign that is not one of the two that mean one.
bool hasLoneDollar(std::string_view value) {
    for (std::size_t at = value.find('$'); at != std::string_view::npos;
         at = value.find('$', at + 2))
        if (value.substr(at, 2) != "$$") return true;
    return false;
}

}  // namespace

std::unique_ptr<ScriptText> ScriptReading::read(bool withDigest) {
    auto text = readScript(withDigest);
    return text ? prepare(std::move(*text)) : nullptr;
}

std::optional<std::string> ScriptReading::readScript(bool withDigest) {
    auto contents = Strict::readScript(options_->script, *sink_);
    if (!contents) return std::nullopt;
    if (withDigest) sha256_ = Inspect::sha256Of(contents->text());
    Platform::translateText(*contents);
    return std::string(contents->text());
}

std::unique_ptr<ScriptText> ScriptReading::prepare(std::string text) {
    isUnusable_ = true;
    const std::string name = options_->script == "-" ? "<stdin>" : options_->script;
    dropByteOrderMark(text);
    if (const char* const encoding = wideEncodingOf(text)) {
        sink_->take({Kind::Syntax, "the script " + name + " is in " + encoding, std::nullopt,
                     "save it as UTF-8"});
        return nullptr;
    }
    try {
        if (mayHaveDirectives(text)) return assemble(name, std::move(text));
        return std::make_unique<ScriptText>(name, std::move(text), options_->variables);
    } catch (const Parser::VariableError& error) {
        sink_->take(
            {Kind::Syntax, "the variable name " + error.name() + " " + wordsFor(error.fault())});
    } catch (const BrokenValue&) {
        sink_->take({Kind::Syntax,
                     "a SUBSTITUTE whose name is a pattern changes the value of a parameter"});
    }
    return nullptr;
}

ScriptFile ScriptReading::readFile(const std::string& path) {
    auto text = edited_ ? edited_(path) : std::nullopt;
    if (!text || files_->name(path, FileRole::IncludedFile)) return readIncluded(path, *files_);
    return {std::move(text), Platform::soleFileAt(path), false, {}};
}

std::unique_ptr<ScriptText> ScriptReading::assemble(const std::string& name, std::string text) {
    ScriptAssembly assembly([this](const std::string& path) { return readFile(path); },
                            recipeFolders(), *sink_);
    const bool isStandardInput = options_->script == "-";
    ScriptFile script{std::move(text),
                      isStandardInput ? std::nullopt : Platform::soleFileAt(options_->script),
                      false,
                      {}};
    auto assembled = assembly.assemble(name, std::move(script), options_->variables);
    isUnusable_ = !assembly.hasOnlyReadFaults();
    return assembled;
}

void ScriptReading::checkVariables(const ScriptText& script) {
    for (const auto& variable : script.map().variables()) {
        if (!variable.isUsed && options_->variables.contains(variable.name))
            sink_->take({Kind::UnusedVariable,
                         "the variable " + variable.name + " does not occur in the script",
                         std::nullopt,
                         likeWord(script, variable.name),
                         {}});
        if (variable.inWord)
            sink_->take({Kind::VariableInWord,
                         "the variable " + variable.name + " is replaced within a longer word",
                         script.placeInFile(*variable.inWord, variable.name.size()),
                         "",
                         {}});
        if (hasLoneDollar(variable.value))
            sink_->take({Kind::VariableDollar,
                         "the value of the variable " + variable.name +
                             " holds a $, which has a meaning of its own in a replacement",
                         std::nullopt,
                         "write $$ for a dollar sign",
                         {}});
    }
}

}  // namespace Strict
