#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "util/crc/GenericCrc.hpp"
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

/// The kind that a type digit means, 0 to 15.
constexpr SRecordType sRecordType(std::uint32_t digit) {
    using enum SRecordType;
    constexpr std::array types{S0, S1, S2, S3, Unknown, S5, Unknown, S7, S8, S9};
    return digit < types.size() ? types[digit] : Unknown;
}

/// Bytes of the address field of a record; 0 if the kind is unknown.
constexpr std::size_t sRecordAddressSize(SRecordType type) {
    constexpr std::array<std::size_t, 9> sizes{2, 2, 3, 4, 2, 4, 3, 2, 0};
    return sizes[static_cast<std::size_t>(type)];
}

/// A record that was read: its count, address, data and checksum.
struct SRecord {
    std::span<const std::uint8_t> bytes;
    std::size_t addressSize;

    std::uint8_t count() const { return bytes[0]; }
    std::span<const std::uint8_t> address() const { return bytes.subspan(1, addressSize); }
    std::span<const std::uint8_t> data() const {
        return bytes.subspan(1 + addressSize, bytes.size() - addressSize - 2);
    }
    std::uint8_t checksum() const { return bytes.back(); }

    /// The checksum that the bytes before it give.
    std::uint8_t computedChecksum() const {
        using Util::Crc::GenericCrc::crc8OnesComplementSum;
        // Field by field: a sum across fields would stall on store forwarding.
        const std::uint8_t ofCount = crc8OnesComplementSum(bytes.first(1), 0xFF);
        return crc8OnesComplementSum(data(), crc8OnesComplementSum(address(), ofCount));
    }
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
