#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "parser/commands/LateNumber.hpp"

namespace Strict {

/// An expression that the language accepts, evaluated in its own order and in the usual one.
class Arithmetic {
public:
    using Answer = Parser::WrapperLib::LateNumber::Answer;

    /// @param answers  to what the expression asks, in the order of the text
    explicit Arithmetic(std::string_view text, std::span<const Answer> answers = {});

    /// The value that the language gives it: each operator takes everything to its right.
    std::uint32_t language() const { return language_; }

    /// The value by the usual precedence, operators of one rank from left to right.
    std::uint32_t usual() const { return usual_; }

    /// An operator of the language's order, or what the number asks for, has a result above
    /// 0xFFFFFFFF or below 0.
    bool leavesRange() const { return leavesRange_; }

    /// An operator of the language's order divides by zero, for `/` and `%` alike.
    bool dividesByZero() const { return dividesByZero_; }

    /// Two numbers are side by side.
    bool hasPair() const { return hasPair_; }

private:
    std::uint32_t language_ = 0;
    std::uint32_t usual_ = 0;
    bool leavesRange_ = false;
    bool dividesByZero_ = false;
    bool hasPair_ = false;
};

}  // namespace Strict
