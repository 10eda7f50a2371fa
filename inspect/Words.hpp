#pragma once

#include <cstdint>
#include <string>

#include "buffer/Area.hpp"

/// How addresses, ranges and numbers are put into words, for diagnostics, tables and pages alike.
namespace Inspect {

/// "0x" and at least eight digits.
std::string addressText(std::uint64_t address);

/// "0x" and as many digits as the number has: a length or a value.
std::string hexText(std::uint64_t number);

/// "0x08000000 to 0x08000FFF": the first and the last address, or the only one.
std::string rangeText(const Buffer::Area& area);

/// "the addresses 0x08000000 to 0x08000FFF", "the address 0x08000000" or "no addresses".
std::string addressesText(const Buffer::Area& area);

/// "line 3", "lines 3 to 1,024".
std::string linesText(std::uint64_t first, std::uint64_t last);

/// "1 byte", "2 bytes"; thousands are separated by commas.
std::string countText(std::uint64_t count, const char* noun);

/// The number with commas between thousands.
std::string grouped(std::uint64_t number);

/// "16 bytes", "1.5 KiB", "3.0 MiB": a number of bytes for a quick look.
std::string sizeText(std::uint64_t bytes);

}  // namespace Inspect
