#include "parser/grammar/Expression.hpp"

#include <memory>
#include <utility>

namespace Parser {

using WrapperLib::LateNumber;

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
    terms_.clear();
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

Expression::Operand Expression::addTerm(LateNumber::Term term) {
    terms_.push_back(std::move(term));
    return {0, static_cast<std::uint32_t>(terms_.size())};
}

void Expression::pushQuery(WrapperLib::Query query) {
    valueStack_.push_front(addTerm(std::move(query)));
}

void Expression::apply(WrapperLib::Operator operation) {
    const Operand right = valueStack_[0];
    const Operand left = valueStack_[1];
    const bool isKnown = left.term == 0 && right.term == 0;
    valueStack_[1] = isKnown ? Operand{WrapperLib::applied(operation, left.value, right.value)}
                             : addTerm(LateNumber::Operation{operation, left, right});
    valueStack_.pop_front();
}

void Expression::takeValue() {
    if (valueStack_.empty()) return;
    const Operand top = valueStack_.front();
    current_.number = top.value;
    if (current_.late) current_.late.reset();
    if (top.term != 0) current_.late = std::make_shared<LateNumber>(std::move(terms_), top.term);
    valueStack_.clear();
}

}  // namespace Parser
