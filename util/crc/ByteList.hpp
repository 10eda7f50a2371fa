#pragma once

#include <cstdint>
#include <vector>

namespace Util::Crc {

/// The value of one checksum: a CRC least significant byte first, its length the CRC's width in
/// bytes; a digest as its algorithm emits it.
using ByteList = std::vector<std::uint8_t>;

}  // namespace Util::Crc
