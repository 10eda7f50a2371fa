#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>

namespace Parser {

/// The calculator of the language: unsigned 32-bit numbers, modulo 2^32.
///
/// The grammar calls an operator's action once everything to the right of the operator has been
/// parsed, so each operator takes all that follows it. Nesting and retries are bounded, since a
/// level takes a piece of the stack and an unbalanced text is tried again by every operator.
class Expression {
public:
    /// A text of `size` characters is about to be parsed.
    void beginText(std::size_t size);

    /// Sets the last value to 0.
    void reset() { currentValue_ = 0; }

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

    void pushValue(std::uint32_t value) { valueStack_.push_front(value); }

    // The operators need both operands and leave their result on top of the stack. A division or
    // modulo by 0 leaves the left operand.
    void addValues();
    void subtractValues();
    void multiplyValues();
    void divideValues();
    void moduloValues();

    /// Makes the top of the stack, if there is one, the current value and empties the stack.
    void takeValue();

    /// The last value.
    std::uint32_t currentValue() const { return currentValue_; }

private:
    /// Applies `operation` to the two topmost entries.
    template <class Operation>
    void apply(Operation operation);

    std::deque<std::uint32_t> valueStack_;  ///< the front is the top
    std::uint32_t currentValue_ = 0;
    unsigned depth_ = 0;
    std::size_t triesLeft_ = 0;
    bool isBad_ = false;
};

}  // namespace Parser
