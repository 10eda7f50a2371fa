#pragma once

#include <string>
#include <vector>

namespace Parser {

/// The words that the grammar compares a script with: statements, sources, options, types and
/// formats, without the values that follow them.
std::vector<std::string> keywords();

/// The first word of a statement, and what the statement does, in one line.
struct StatementWord {
    std::string keyword;
    std::string meaning;
};

/// All statements, in the order in which the grammar tries them.
std::vector<StatementWord> statementWords();

}  // namespace Parser
