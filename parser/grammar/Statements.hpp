#pragma once

#include <array>
#include <memory>

#include "parser/grammar/ScriptGrammar.hpp"

/// The statements of the language. Each has a source here that defines its rules.
namespace Parser {

using StatementDefinition = std::unique_ptr<const StatementRules> (*)(CommonRules&, ParserState&);

std::unique_ptr<const StatementRules> newBufferCmd(CommonRules& rules, ParserState& state);
std::unique_ptr<const StatementRules> fillBufferCmd(CommonRules& rules, ParserState& state);
std::unique_ptr<const StatementRules> printTextCmd(CommonRules& rules, ParserState& state);
std::unique_ptr<const StatementRules> printBufferCmd(CommonRules& rules, ParserState& state);
std::unique_ptr<const StatementRules> printCrcCmd(CommonRules& rules, ParserState& state);
std::unique_ptr<const StatementRules> printHashCmd(CommonRules& rules, ParserState& state);
std::unique_ptr<const StatementRules> writeFileCmd(CommonRules& rules, ParserState& state);
std::unique_ptr<const StatementRules> newCrcCmd(CommonRules& rules, ParserState& state);
std::unique_ptr<const StatementRules> newHashCmd(CommonRules& rules, ParserState& state);
std::unique_ptr<const StatementRules> callAppCmd(CommonRules& rules, ParserState& state);

/// In the order in which the grammar tries them.
inline constexpr std::array<StatementDefinition, 10> statementDefinitions{
    &newBufferCmd, &fillBufferCmd, &printTextCmd, &printBufferCmd, &printCrcCmd,
    &printHashCmd, &writeFileCmd,  &newCrcCmd,    &newHashCmd,     &callAppCmd,
};

}  // namespace Parser
