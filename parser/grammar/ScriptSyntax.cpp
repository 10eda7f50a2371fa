#include "parser/grammar/ScriptSyntax.hpp"

#include "parser/grammar/ScriptGrammar.hpp"

namespace Parser {

ScriptSyntax::ScriptSyntax(WrapperLib::TextCalculator calculator)
    : state_(calculator), rules_(std::make_unique<const ScriptRules>(state_)) {}

ScriptSyntax::~ScriptSyntax() = default;

std::size_t ScriptSyntax::parse(std::string_view text) {
    state_.beginText(text.size());
    const Position first = text.data();
    return static_cast<std::size_t>(
        Spirit::parse(first, first + text.size(), rules_->script).length);
}

const std::vector<std::string_view>& ScriptSyntax::statementKeywords() const {
    return rules_->statementKeywords;
}

}  // namespace Parser
