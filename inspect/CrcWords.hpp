#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "util/crc/CrcParameters.hpp"

/// How CRCs and their values are put into words.
namespace Inspect {

/// A number of that many bits: "0x" and as many digits as they need.
std::string crcNumberText(Util::Crc::CrcNumber number, int width);

/// "width 16, poly 0x8005, init 0xFFFF, refin true, refout true, xorout 0x0000": the parameters by
/// their names in the public catalogue.
std::string crcText(const Util::Crc::CrcParameters& crc);

/// The word of the language for an alignment.
const char* alignmentWord(Util::Crc::CrcAlignment alignment);

/// The number that is kept least significant byte first in at most sixteen bytes.
Util::Crc::CrcNumber numberOf(std::span<const std::uint8_t> bytes);

/// The number that is kept least significant byte first: "0xCBF43926".
std::string valueText(std::span<const std::uint8_t> bytes);

}  // namespace Inspect
