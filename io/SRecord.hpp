#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "util/records/Records.hpp"

/// The records of the S-record format, as reader and writer both know them.
namespace Io {

/// Characters that a writer of a record may overwrite beyond it.
using Util::Records::textSlack;

/// Kinds of records. S4, S6 and all digits that the format does not have are unknown.
enum class SRecordType : std::uint32_t {
    S0 = 0,
    S1 = 1,
    S2 = 2,
    S3 = 3,
    S5 = 4,
    S7 = 5,
    S8 = 6,
    S9 = 7,
    Unknown = 8
};

/// Characters of a record with so many bytes of address and data, line feed included.
constexpr std::size_t sRecordLength(std::size_t addressAndDataSize) {
    return 2 + 2 * (1 + addressAndDataSize + 1) + 1;
}

/// Writes one S-record, "Sn", count, address, data and checksum, and a line feed, to `out`, which
/// has room for it and for `textSlack` more, and returns the position after it.
///
/// @param type     not `Unknown`
/// @param address  the address field, most significant byte first
/// @param data     with the address no more than 254 bytes, the reach of the count field, whose low
///                 eight bits it takes
char* writeSRecord(char* out, SRecordType type, std::span<const std::uint8_t> address,
                   std::span<const std::uint8_t> data);

}  // namespace Io
