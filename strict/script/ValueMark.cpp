#include "strict/script/ValueMark.hpp"

namespace Strict::ValueMark {

namespace {

/// Digits of four bits are the sixteen control characters from here on.
constexpr unsigned char zero = 0x0E;
constexpr unsigned bitsOfDigit = 4;
constexpr unsigned valuesOfDigit = 1U << bitsOfDigit;

}  // namespace

std::string of(std::size_t number) {
    std::string mark(length, sign);
    for (std::size_t i = length; i-- > 1; number >>= bitsOfDigit)
        mark[i] = static_cast<char>(zero + number % valuesOfDigit);
    return mark;
}

std::optional<std::size_t> numberIn(std::string_view text) {
    if (text.size() < length || text.front() != sign) return std::nullopt;
    std::size_t number = 0;
    for (const char c : text.substr(1, length - 1)) {
        const auto digit = static_cast<unsigned char>(c);
        if (digit < zero || digit >= zero + valuesOfDigit) return std::nullopt;
        number = number << bitsOfDigit | (digit - zero);
    }
    return number;
}

}  // namespace Strict::ValueMark
