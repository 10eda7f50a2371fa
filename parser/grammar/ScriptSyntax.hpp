#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "parser/grammar/ParserState.hpp"

namespace Parser {

struct ScriptRules;

/// Parses texts of the script language into statements, for a front end that runs them on its own.
class ScriptSyntax {
public:
    /// @param calculator  evaluates the bracket expression of a PRINT_TEXT
    explicit ScriptSyntax(WrapperLib::TextCalculator calculator);
    ~ScriptSyntax();
    ScriptSyntax(const ScriptSyntax&) = delete;
    ScriptSyntax& operator=(const ScriptSyntax&) = delete;

    /// Parses as many whole statements as there are at the beginning of `text` and appends them to
    /// those of `state`.
    ///
    /// @return the characters that they take, with the white space around them
    std::size_t parse(std::string_view text);

    ParserState& state() { return state_; }
    const ParserState& state() const { return state_; }

    /// The first words of all statements.
    const std::vector<std::string_view>& statementKeywords() const;

private:
    ParserState state_;
    std::unique_ptr<const ScriptRules> rules_;
};

}  // namespace Parser
