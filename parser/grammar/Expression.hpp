#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

#include "parser/commands/LateNumber.hpp"

namespace Parser {

/// The calculator of the language: unsigned 32-bit numbers, modulo 2^32. What asks images or
/// symbols becomes a number that is known when its statement runs.
///
/// The grammar calls an operator's action once everything to the right of the operator has been
/// parsed, so each operator takes all that follows it. Nesting and retries are bounded, since a
/// level takes a piece of the stack and an unbalanced text is tried again by every operator.
class Expression {
public:
    /// A text of `size` characters is about to be parsed.
    void beginText(std::size_t size);

    /// Sets the last value to 0.
    void reset() { current_ = {}; }

    /// A value may ask images and symbols, as it may unless somebody forbids it.
    bool takesQueries() const { return takesQueries_; }
    void forbidQueries() { takesQueries_ = false; }

    /// A value begins. Always true, for the grammar.
    bool begin();

    /// Enters one level of nested or chained expressions. False if there are too many levels or
    /// too many tries; the enclosing value fails then.
    bool enter();
    void leave() { --depth_; }

    /// True if an operator has both operands. If not, the enclosing value fails.
    bool hasOperands();

    /// The value has not failed so far.
    bool isGood() const { return !isBad_; }

    void pushValue(std::uint32_t value) { valueStack_.push_front({value}); }
    void pushQuery(WrapperLib::Query query);

    /// Applies an operator to the two topmost entries, which must be there, and leaves its result
    /// on top of the stack.
    void apply(WrapperLib::Operator operation);

    /// Makes the top of the stack, if there is one, the current value and empties the stack.
    void takeValue();

    /// The last value.
    const WrapperLib::Amount& current() const { return current_; }

private:
    using Operand = WrapperLib::LateNumber::Operand;

    Operand addTerm(WrapperLib::LateNumber::Term term);

    std::deque<Operand> valueStack_;                   ///< the front is the top
    std::vector<WrapperLib::LateNumber::Term> terms_;  ///< those that operands are
    WrapperLib::Amount current_;
    bool takesQueries_ = true;
    unsigned depth_ = 0;
    std::size_t triesLeft_ = 0;
    bool isBad_ = false;
};

}  // namespace Parser
