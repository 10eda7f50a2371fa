#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace Util {

/// Writes each byte as two upper-case hexadecimal digits to `out`, which has room for twice
/// `bytes.size()` characters, and returns the position behind the last digit.
char* writeHex(char* out, std::span<const std::uint8_t> bytes);

/// Appends each byte as two upper-case hexadecimal digits, in order and without separators.
void appendHex(std::string& text, std::span<const std::uint8_t> bytes);

/// `number` as eight upper-case hexadecimal digits; of a larger number the low 32 bits.
std::string hexWord(std::uint64_t number);

}  // namespace Util
