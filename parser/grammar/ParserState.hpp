#pragma once

#include <cstddef>

#include "parser/grammar/Expectations.hpp"
#include "parser/grammar/Expression.hpp"
#include "parser/grammar/Position.hpp"
#include "parser/grammar/StatementBuilder.hpp"

namespace Parser {

/// Searches of the grammar for a closing delimiter that found none. A later one need not look
/// again, or a text of many unclosed delimiters would take quadratic time.
struct FruitlessSearches {
    Position brace = nullptr;
    Position quote = nullptr;
    Position bracket = nullptr;
};

/// What the actions of the grammar work on.
struct ParserState {
    explicit ParserState(WrapperLib::TextCalculator calculator) : statement(calculator) {}

    /// A text of `size` characters is about to be parsed.
    void beginText(std::size_t size) {
        fruitlessSearches = {};
        expression.beginText(size);
        statement.beginText();
    }

    /// Forgets everything but the finished statements.
    void reset() {
        expression.reset();
        statement.reset();
    }

    Expression expression;
    StatementBuilder statement;
    FruitlessSearches fruitlessSearches;
    /// Takes what a failing parse missed; null if nobody wants to know.
    Expectations* expectations = nullptr;
};

}  // namespace Parser
