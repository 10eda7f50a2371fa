#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "io/export/OutputStyles.hpp"

namespace Io::Export {

/// Writes words of hexadecimal digits and a blank after each, most significant byte first, to
/// `out`, which has room for three characters a byte, and returns the position after them.
///
/// @param bytes  whole words, in the order of their addresses
char* writeWords(char* out, std::span<const std::uint8_t> bytes, const WordStyle& style);

}  // namespace Io::Export
