#include "io/IntelHexRecord.hpp"

#include "util/records/Records.hpp"

namespace Io {

char* writeIntelRecord(char* out, std::uint16_t address, std::uint8_t typeByte,
                       std::span<const std::uint8_t> data) {
    return Util::Records::Codec::encodeIntel(out, address, typeByte, data);
}

}  // namespace Io
