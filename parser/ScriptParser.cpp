#include "parser/ScriptParser.hpp"

#include <algorithm>
#include <chrono>
#include <exception>
#include <optional>
#include <utility>

#include "facts/Listener.hpp"
#include "parser/grammar/ScriptGrammar.hpp"
#include "parser/text/Preparation.hpp"
#include "parser/text/VariableExpansion.hpp"
#include "platform/Files.hpp"

namespace Parser {

namespace {

double secondsSince(std::chrono::steady_clock::time_point start) {
    using std::chrono::milliseconds;
    const auto elapsed = std::chrono::steady_clock::now() - start;
    constexpr double millisecondsPerSecond = 1000.0;
    return static_cast<double>(std::chrono::duration_cast<milliseconds>(elapsed).count()) /
           millisecondsPerSecond;
}

}  // namespace

template <class ScannerT>
typename Spirit::parser_result<ScriptParser, ScannerT>::type ScriptParser::parse(
    const ScannerT& scan) const {
    return rules_->script.parse(scan);
}

ScriptParser::ScriptParser() : ScriptParser({}, {}) {}

ScriptParser::ScriptParser(std::string path, std::map<std::string, std::string> variables)
    : state_(&calculateNumbers),
      initialVariables_(std::move(variables)),
      scriptPath_(std::move(path)) {}

ScriptParser::~ScriptParser() = default;

bool ScriptParser::run() {
    const auto start = std::chrono::steady_clock::now();
    bool isParsed = false;
    try {
        context_.variables = initialVariables_;
        auto contents = Platform::readFile(scriptPath_);
        if (!contents) {
            Facts::report(Facts::ScriptNotOpened{scriptPath_});
            return false;
        }
        // A part of a script may well parse, and then do a part of its work.
        if (contents->reading != Platform::Reading::Complete) throw std::exception();
        Platform::translateText(*contents);
        isParsed = prepareAndRun(std::string(std::exchange(contents, std::nullopt)->text()));
    } catch (const VariableError& error) {
        Facts::report(Facts::VariableRejected{error.name(), error.fault()});
    } catch (const std::exception&) {
        Facts::report(Facts::ScriptNotPrepared{scriptPath_});
    }
    state_.statement.clear();
    Facts::report(Facts::RunEnded{secondsSince(start)});
    return isParsed;
}

bool ScriptParser::prepareAndRun(std::string text) {
    removeComments(text);
    takeSubstitutions(text, context_.variables);
    expandVariables(text, context_.variables);
    context_.variables.clear();
    const ParseResult parsed = parseScript(text);
    if (!parsed.full) {
        const std::string_view matched = std::string_view(text).substr(0, parsed.length);
        const auto line = static_cast<std::size_t>(std::ranges::count(matched, '\n')) + 1;
        Facts::report(Facts::SyntaxError{state_.statement.lastCommand(),
                                         state_.statement.lastTokens(), line});
        return false;
    }
    for (const auto& command : state_.statement.commands()) command->run(context_);
    return true;
}

ScriptParser::ParseResult ScriptParser::parseScript(std::string_view text) {
    if (!rules_) rules_ = std::make_unique<const ScriptRules>(state_);
    state_.beginText(text.size());
    const Position first = text.data();
    const auto info = Spirit::parse(first, first + text.size(), *this);
    return {info.stop, info.hit, info.full, static_cast<std::size_t>(info.length)};
}

}  // namespace Parser
