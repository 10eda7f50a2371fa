#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "util/crc/GenericCrc.hpp"
#include "util/records/Records.hpp"

/// The records of Intel HEX, as reader and writer both know them.
namespace Io {

/// Characters that a writer of a record may overwrite beyond it.
using Util::Records::textSlack;

/// Kinds of records; the type byte of a record in a file is the value minus 1.
enum class IntelRecordType : std::uint32_t {
    Unknown = 0,
    Data = 1,
    EndOfFile = 2,
    ExtendedSegmentAddress = 3,
    StartSegmentAddress = 4,
    ExtendedLinearAddress = 5,
    StartLinearAddress = 6
};

/// The kind that a type byte means, `Unknown` for one that the format does not have.
constexpr IntelRecordType intelRecordType(std::uint8_t typeByte) {
    return typeByte <= 5 ? static_cast<IntelRecordType>(typeByte + 1) : IntelRecordType::Unknown;
}

/// The type byte of a kind of record that the format has.
constexpr std::uint8_t typeByteOf(IntelRecordType type) {
    return static_cast<std::uint8_t>(static_cast<std::uint32_t>(type) - 1);
}

/// Data bytes that a record of this kind has; nothing if any number is allowed.
constexpr std::optional<std::size_t> intelDataSize(IntelRecordType type) {
    switch (type) {
        case IntelRecordType::EndOfFile:
            return 0;
        case IntelRecordType::ExtendedSegmentAddress:
        case IntelRecordType::ExtendedLinearAddress:
            return 2;
        case IntelRecordType::StartSegmentAddress:
        case IntelRecordType::StartLinearAddress:
            return 4;
        case IntelRecordType::Data:
        case IntelRecordType::Unknown:
            break;
    }
    return std::nullopt;
}

/// A record that was read: its count, address, type and data, and apart from them its checksum.
struct IntelRecord {
    /// Bytes of a record beside its data: the head and the checksum.
    static constexpr std::size_t headSize = 4;
    static constexpr std::size_t frameSize = headSize + 1;

    std::span<const std::uint8_t> bytes;
    std::uint8_t checksum;

    std::uint32_t length() const { return bytes[0]; }
    std::uint32_t address() const { return bytes[1] * 256U + bytes[2]; }
    IntelRecordType type() const { return intelRecordType(bytes[3]); }
    std::span<const std::uint8_t> data() const { return bytes.subspan(headSize); }

    /// The checksum that the bytes give.
    std::uint8_t computedChecksum() const {
        using Util::Crc::GenericCrc::crc8TwosComplementSum;
        // Field by field: a sum across fields would stall on store forwarding.
        return crc8TwosComplementSum(data(), crc8TwosComplementSum(bytes.first(headSize), 0));
    }

    /// The base address that an extended address record sets.
    std::uint64_t base() const;

    /// The address that a start address record names.
    std::uint64_t startAddress() const;
};

/// Characters of a record with `dataSize` data bytes, line feed included.
constexpr std::size_t intelRecordLength(std::size_t dataSize) {
    return 1 + 2 * (4 + dataSize + 1) + 1;
}

/// Writes one Intel HEX record, ":LLAAAATT<data>CC" and a line feed, to `out`, which has room for
/// it and for `textSlack` more, and returns the position after it.
///
/// @param address   16-bit address field, written high byte first
/// @param typeByte  00 to 05, as in the file
/// @param data      at most 255 bytes, the reach of the count field, whose low eight bits it takes
char* writeIntelRecord(char* out, std::uint16_t address, std::uint8_t typeByte,
                       std::span<const std::uint8_t> data);

}  // namespace Io
