#include "parser/grammar/Keywords.hpp"

#include "parser/grammar/ScriptGrammar.hpp"

namespace Parser {

std::vector<std::string> keywords() {
    ParserState state(nullptr);
    const ScriptRules rules(state);
    return {rules.keywords.begin(), rules.keywords.end()};
}

}  // namespace Parser
