#pragma once

#include <cstdint>
#include <span>

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
