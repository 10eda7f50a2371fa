#include "strict/script/NumberCheck.hpp"

#include <algorithm>
#include <utility>
#include <vector>

#include "inspect/Words.hpp"
#include "parser/commands/LateNumber.hpp"
#include "strict/script/Arithmetic.hpp"

namespace Strict {

using Parser::Number;
using Parser::Part;
using Parser::Role;
using Parser::Statement;

namespace {

/// The number asks images or symbols for its value.
bool isLate(const Number& number) {
    return number.late != nullptr;
}

}  // namespace

void NumberCheck::checkBefore(const Statement& statement) {
    isLate_ = false;
    check(statement);
}

void NumberCheck::checkSettled(const Statement& statement) {
    if (!statement.asks()) return;
    isLate_ = true;
    check(statement);
}

void NumberCheck::check(const Statement& statement) {
    const auto isNow = [&](std::span<const Number> numbers) {
        return std::ranges::any_of(numbers, isLate) == isLate_;
    };
    for (const Part& part : statement.parts) {
        if (part.role == Role::Bytes || part.role == Role::Filler) checkBytes(statement, part);
        if ((part.role == Role::Area || part.role == Role::Range) &&
            isNow(statement.numbersOf(part)))
            checkArea(statement, part);
    }
    for (const Number& number : statement.numbers) {
        if (isLate(number) != isLate_) continue;
        checkExpression(number);
        checkDecimal(number);
    }
    if (statement.has(Role::MakesImage) && isNow(statement.numbers)) checkEnd(statement);
}

/// Nobody writes zeros before a decimal address. Small numbers have them in columns.
void NumberCheck::checkDecimal(const Number& number) {
    constexpr std::size_t digitsOfAddress = 6;
    constexpr std::string_view digits = "0123456789";
    constexpr std::string_view wordCharacters = "0123456789abcdefABCDEFxX";
    const std::string_view text = number.text;
    for (std::size_t at = text.find_first_of(digits); at < text.size();) {
        const std::size_t end = std::min(text.find_first_not_of(wordCharacters, at), text.size());
        const std::string_view word = text.substr(at, end - at);
        const std::size_t zeros = std::min(word.find_first_not_of('0'), word.size());
        const bool isDecimal = word.find_first_not_of(digits) == std::string_view::npos;
        if (isDecimal && word.size() >= digitsOfAddress && zeros != 0 && zeros != word.size())
            report(Kind::LeadingZero,
                   "this is the decimal number " + std::string(word.substr(zeros)), word,
                   "a hexadecimal number begins with 0x: 0x" + std::string(word));
        at = text.find_first_of(digits, end);
    }
}

/// The bytes of a new image as far as its statement fixes their number.
std::optional<std::uint64_t> NumberCheck::lengthOf(const Statement& statement) {
    if (statement.roles.hasAny({Role::Lane, Role::Interleave})) return std::nullopt;
    if (const Part* const range = statement.last(Role::Range))
        return statement.areaOf(*range).length;
    if (statement.has(Role::Area)) return std::nullopt;
    const Part* const bytes = statement.last(Role::Bytes);
    return bytes == nullptr ? std::nullopt : std::optional(statement.bytesOf(*bytes));
}

void NumberCheck::checkEnd(const Statement& statement) {
    constexpr std::uint64_t end = std::uint64_t{1} << 32U;
    const Part* const range = statement.last(Role::Range);
    const Part* const address = statement.last(Role::Address);
    const auto length = lengthOf(statement);
    const Part* const part = address != nullptr ? address : range;
    if (part == nullptr || !length || *length == 0) return;
    const std::uint64_t start = statement.numbersOf(*part).front().value();
    if (start + *length <= end) return;
    report(Kind::Outside,
           "the image would end at " + Inspect::addressText(start + *length - 1) +
               ", past the last address " + Inspect::addressText(end - 1),
           part->text,
           "from " + Inspect::addressText(start) + " on there are " +
               Inspect::hexText(end - start) + " bytes");
}

void NumberCheck::checkBytes(const Statement& statement, const Part& part) {
    const std::string_view size = statement.textOf(Role::ValueSize);
    if (size == "4") return;
    for (const Number& number : statement.numbersOf(part)) {
        if (isLate(number) != isLate_) continue;
        if (size.empty() && number.value() > 0xFF)
            report(Kind::TruncatedValue,
                   "the value does not fit into a byte, only its low eight bits count", number.text,
                   "-setValueSize=2 or 4 takes larger values");
        else if (number.value() > 0xFFFF)
            report(Kind::ValueSize, "the value does not fit into 2 bytes", number.text,
                   "-setValueSize=4 takes all values");
    }
}

void NumberCheck::checkArea(const Statement& statement, const Part& part) {
    const Buffer::Area area = statement.areaOf(part);
    // Memories begin at high addresses and are small beside them.
    constexpr std::uint64_t highAddress = std::uint64_t{1} << 24U;
    const bool isLikeEnd = area.start >= highAddress && area.length > area.start &&
                           area.length - area.start < area.start / 2;
    if (isLikeEnd)
        report(Kind::EndAsLength, "this length looks like an end address",
               statement.numbersOf(part).back().text,
               "the length up to that address is " + Inspect::hexText(area.length - area.start));
}

void NumberCheck::checkExpression(const Number& number) {
    const auto answers =
        number.late == nullptr ? std::vector<Arithmetic::Answer>() : number.late->answers();
    const Arithmetic arithmetic(number.text, answers);
    if (arithmetic.hasPair()) {
        report(Kind::NumberPair, "of two numbers side by side only the last one counts",
               number.text, "separate them by a comma");
        return;
    }
    if (arithmetic.dividesByZero())
        report(Kind::NumberRange,
               "this divides by zero, and the language takes the dividend for the result",
               number.text);
    if (arithmetic.leavesRange())
        report(Kind::NumberRange,
               "this leaves 32 bits on its way and comes to " +
                   Inspect::hexText(arithmetic.language()),
               number.text, "numbers go from 0 to 0xFFFFFFFF");
    if (arithmetic.usual() == arithmetic.language()) return;
    report(
        Kind::ExpressionOrder,
        "this is " + Inspect::hexText(arithmetic.language()) +
            ", since an operator takes everything to its right; by the usual order it would be " +
            Inspect::hexText(arithmetic.usual()),
        number.text, "use parentheses, as in (8-4)-2");
}

void NumberCheck::report(Kind kind, std::string text, std::string_view part, std::string hint) {
    if (!pending_->wants(kind)) return;
    part = part.substr(0, part.find_last_not_of(" \t\n\v\f\r") + 1);
    pending_->add({kind, std::move(text), script_->placeOf(part), std::move(hint),
                   script_->variableNotes(part)});
}

}  // namespace Strict
