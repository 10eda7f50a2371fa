#include "io/IntelHexRecord.hpp"

#include <array>

#include "util/BigEndian.hpp"
#include "util/Hex.hpp"

namespace Io {

namespace {

constexpr std::uint64_t paragraph = 16;
constexpr std::uint64_t page = 65536;

}  // namespace

std::uint64_t IntelRecord::base() const {
    const bool isSegment = type() == IntelRecordType::ExtendedSegmentAddress;
    return Util::bigEndian(data()) * (isSegment ? paragraph : page);
}

std::uint64_t IntelRecord::startAddress() const {
    if (type() == IntelRecordType::StartLinearAddress) return Util::bigEndian(data());
    return Util::bigEndian(data().first(2)) * paragraph + Util::bigEndian(data().last(2));
}

char* writeIntelRecord(char* out, std::uint16_t address, std::uint8_t typeByte,
                       std::span<const std::uint8_t> data) {
    using Util::Crc::GenericCrc::crc8TwosComplementSum;
    const std::array head{static_cast<std::uint8_t>(data.size()),
                          static_cast<std::uint8_t>(address >> 8U),
                          static_cast<std::uint8_t>(address), typeByte};
    *out++ = ':';
    std::uint8_t checksum = 0;
    for (const std::uint8_t byte : head) {
        checksum = static_cast<std::uint8_t>(checksum - byte);
        out = Util::writeHex(out, byte);
    }
    out = Util::writeHex(out, data);
    // The seed carries the sum on. Reading back bytes just stored would stall on store forwarding.
    out = Util::writeHex(out, crc8TwosComplementSum(data, checksum));
    *out++ = '\n';
    return out;
}

}  // namespace Io
