#include "parser/grammar/Expression.hpp"

namespace Parser {

namespace {

/// Nested or chained expressions that one value may hold.
constexpr unsigned deepestExpression = 1000;
/// Expressions that one text may try. A sound one is tried at most once for each character. One
/// that lacks a parenthesis is tried again by every operator before it, and those again by the
/// operators before the parenthesis that encloses them.
constexpr std::size_t triesForAnyText = 10'000;
constexpr std::size_t triesForEachCharacter = 8;

}  // namespace

void Expression::beginText(std::size_t size) {
    triesLeft_ = triesForAnyText + triesForEachCharacter * size;
}

bool Expression::begin() {
    isBad_ = false;
    valueStack_.clear();
    return true;
}

bool Expression::enter() {
    if (depth_ == deepestExpression || triesLeft_ == 0) isBad_ = true;
    if (isBad_) return false;
    ++depth_;
    --triesLeft_;
    return true;
}

bool Expression::hasOperands() {
    constexpr std::size_t operands = 2;
    if (valueStack_.size() < operands) isBad_ = true;
    return valueStack_.size() >= operands;
}

template <class Operation>
void Expression::apply(Operation operation) {
    valueStack_[1] = operation(valueStack_[1], valueStack_[0]);
    valueStack_.pop_front();
}

void Expression::addValues() {
    apply([](std::uint32_t left, std::uint32_t right) { return left + right; });
}

void Expression::subtractValues() {
    apply([](std::uint32_t left, std::uint32_t right) { return left - right; });
}

void Expression::multiplyValues() {
    apply([](std::uint32_t left, std::uint32_t right) { return left * right; });
}

void Expression::divideValues() {
    apply([](std::uint32_t left, std::uint32_t right) { return right == 0 ? left : left / right; });
}

void Expression::moduloValues() {
    apply([](std::uint32_t left, std::uint32_t right) { return right == 0 ? left : left % right; });
}

void Expression::takeValue() {
    if (!valueStack_.empty()) currentValue_ = valueStack_.front();
    valueStack_.clear();
}

}  // namespace Parser
