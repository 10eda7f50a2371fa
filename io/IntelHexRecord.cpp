#include "io/IntelHexRecord.hpp"

#include "util/BigEndian.hpp"
#include "util/records/Records.hpp"

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
    return Util::Records::Codec::encodeIntel(out, address, typeByte, data);
}

}  // namespace Io
