#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace Util {

/// The upper-case hexadecimal digit of a number below 16. Computed rather than looked up, so that
/// compilers vectorise loops over it.
constexpr char hexDigit(unsigned nibble) {
    constexpr unsigned pastNine = 'A' - '0' - 10;
    return static_cast<char>('0' + nibble + (nibble > 9 ? pastNine : 0));
}

/// Writes `byte` as two upper-case hexadecimal digits to `out` and returns the position after
/// them.
inline char* writeHex(char* out, std::uint8_t byte) {
    *out++ = hexDigit(byte >> 4U);
    *out++ = hexDigit(byte & 15U);
    return out;
}

/// Writes each byte as two upper-case hexadecimal digits to `out`, which has room for twice
/// `bytes.size()` characters, and returns the position after the last digit.
char* writeHex(char* out, std::span<const std::uint8_t> bytes);

/// Reads `count` bytes of two hexadecimal digits each, upper or lower case, from `digits` to `out`.
/// Returns false if any character is not such a digit; `out` is unspecified then.
bool readHex(std::uint8_t* out, const char* digits, std::size_t count);

/// Appends each byte as two upper-case hexadecimal digits, in order and without separators.
void appendHex(std::string& text, std::span<const std::uint8_t> bytes);

/// The same with lower-case digits, as digests are usually written.
std::string lowerHex(std::span<const std::uint8_t> bytes);

/// The low 32 bits of `number` as eight upper-case hexadecimal digits.
std::string hexWord(std::uint64_t number);

/// A byte as two upper-case hexadecimal digits.
std::string hexByte(std::uint8_t byte);

/// A number in upper-case hexadecimal digits, with zeros in front up to `fewestDigits`, at most 16.
std::string hexNumber(std::uint64_t number, std::size_t fewestDigits);

}  // namespace Util
