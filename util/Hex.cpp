#include "util/Hex.hpp"

#include <algorithm>
#include <array>
#include <bit>

namespace Util {

namespace {

/// The value of a character that is not a digit: a bit that no digit's value has.
constexpr std::uint8_t noDigit = 0x80;

/// Arithmetic, as in `hexDigit`, so that compilers vectorise it.
constexpr std::uint8_t valueOf(char digit) {
    constexpr unsigned caseBit = 'a' ^ 'A';
    const auto decimal = static_cast<std::uint8_t>(digit - '0');
    const auto letter =
        static_cast<std::uint8_t>((static_cast<unsigned char>(digit) | caseBit) - 'a');
    const auto letterValue = static_cast<std::uint8_t>(letter < 6 ? letter + 10 : noDigit);
    return decimal < 10 ? decimal : letterValue;
}

/// Reads as `readHex` does. The result has the bit `noDigit` if any character is not a digit.
inline std::uint8_t readDigits(std::uint8_t* out, const char* digits, std::size_t count) {
    std::uint8_t all = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t high = valueOf(digits[2 * i]);
        const std::uint8_t low = valueOf(digits[2 * i + 1]);
        all = static_cast<std::uint8_t>(all | high | low);
        out[i] = static_cast<std::uint8_t>(high << 4U | low);
    }
    return all;
}

}  // namespace

char* writeHex(char* out, std::span<const std::uint8_t> bytes) {
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        out[2 * i] = hexDigit(bytes[i] >> 4U);
        out[2 * i + 1] = hexDigit(bytes[i] & 15U);
    }
    return out + 2 * bytes.size();
}

bool readHex(std::uint8_t* out, const char* digits, std::size_t count) {
    // Compilers turn a loop of fixed length into a few vector operations.
    constexpr std::size_t step = 16;
    std::uint8_t all = 0;
    for (; count >= step; count -= step, out += step, digits += 2 * step)
        all = static_cast<std::uint8_t>(all | readDigits(out, digits, step));
    all = static_cast<std::uint8_t>(all | readDigits(out, digits, count));
    return all < noDigit;
}

void appendHex(std::string& text, std::span<const std::uint8_t> bytes) {
    const std::size_t length = text.size();
    text.resize(length + 2 * bytes.size());
    writeHex(text.data() + length, bytes);
}

std::string lowerHex(std::span<const std::uint8_t> bytes) {
    std::string text;
    appendHex(text, bytes);
    std::ranges::transform(text, text.begin(),
                           [](char c) { return c >= 'A' ? static_cast<char>(c - 'A' + 'a') : c; });
    return text;
}

std::string hexWord(std::uint64_t number) {
    const std::array bytes{
        static_cast<std::uint8_t>(number >> 24U), static_cast<std::uint8_t>(number >> 16U),
        static_cast<std::uint8_t>(number >> 8U), static_cast<std::uint8_t>(number)};
    std::string text;
    appendHex(text, bytes);
    return text;
}

std::string hexByte(std::uint8_t byte) {
    std::string digits;
    appendHex(digits, {&byte, 1});
    return digits;
}

std::string hexNumber(std::uint64_t number, std::size_t fewestDigits) {
    const std::size_t used = (static_cast<std::size_t>(std::bit_width(number)) + 3) / 4;
    // Short enough to need no memory: writers call this when their file is open.
    std::string digits(std::max(used, fewestDigits), '0');
    for (auto digit = digits.rbegin(); number != 0; ++digit, number >>= 4U)
        *digit = hexDigit(number & 15U);
    return digits;
}

}  // namespace Util
