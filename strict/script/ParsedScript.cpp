#include "strict/script/ParsedScript.hpp"

#include <utility>

#include "parser/grammar/Calculation.hpp"
#include "strict/script/SyntaxErrors.hpp"

namespace Strict {

ParsedScript::ParsedScript(const ScriptText& script) : syntax_(&Parser::calculateQueries) {
    constexpr std::size_t mostErrors = 20;
    Parser::StatementBuilder& statement = syntax_.state().statement;
    const std::string_view text = script.prepared();
    statement.keepStatements(text.size());
    std::size_t resumed = 0;  // where the parse went on after the last error
    for (std::size_t at = 0;;) {
        at += syntax_.parse(text.substr(at));
        if (at == text.size()) return;
        BrokenText broken{at, statements().size(), {}, {}, {}};
        if (broken_.size() == mostErrors) {
            broken.diagnostic = {Kind::Syntax, "there are more syntax errors than are shown"};
            broken_.push_back(std::move(broken));
            return;
        }
        const auto begun = statement.statements().begun();
        broken.begun.assign(begun.begin(), begun.end());
        explain(broken, script, resumed);
        broken_.push_back(std::move(broken));
        at = resumed = nextStatement(text, at, keywords());
        if (at == text.size()) return;
    }
}

/// Parses once more, now with a note of what is missing. The last statement that is finished may be
/// the broken one, without the option that broke it.
void ParsedScript::explain(BrokenText& broken, const ScriptText& script,
                           std::size_t resumed) const {
    const std::string_view text = script.prepared();
    std::size_t from = broken.offset;
    if (!statements().empty()) {
        const std::string_view last = statements()[statements().size() - 1].text;
        const std::size_t begin = script.offsetOf(last);
        if (begin + last.size() >= resumed) from = begin;
    }
    Parser::ScriptSyntax explainer(nullptr);
    explainer.state().expectations = &broken.missed;
    explainer.parse(text.substr(from));
    broken.diagnostic = syntaxError(script, text.substr(from), broken.missed, keywords());
}

}  // namespace Strict
