#pragma once

#include <cstdint>
#include <vector>

namespace Util::Crc {

/// The value of one checksum: a CRC with its least significant byte first, as many bytes as its
/// width has, or a digest in the order in which its algorithm emits it.
using ByteList = std::vector<std::uint8_t>;

}  // namespace Util::Crc
