#pragma once

#include <cstdint>
#include <span>

/// CRC-32 with the instructions that Arm has for its polynomial. They serve data that is too short
/// to be folded, and all data on a CPU that has them without carry-less multiplication.
namespace Util::Crc {

/// True if the CPU has the instructions. `updateByInstructions` must not be called otherwise.
bool hasCrc32Instructions();

/// Updates a register that shifts right, of `crc32ReflectedPolynomial`.
std::uint32_t updateByInstructions(std::uint32_t crc, std::span<const std::uint8_t> data);

}  // namespace Util::Crc
