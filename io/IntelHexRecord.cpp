#include "io/IntelHexRecord.hpp"

#include <array>

#include "util/Hex.hpp"
#include "util/crc/GenericCrc.hpp"

namespace Io {

char* writeIntelRecord(char* out, std::uint16_t address, std::uint8_t typeByte,
                       std::span<const std::uint8_t> data) {
    using Util::Crc::GenericCrc::crc8TwosComplementSum;
    const std::array header{static_cast<std::uint8_t>(data.size()),
                            static_cast<std::uint8_t>(address >> 8U),
                            static_cast<std::uint8_t>(address), typeByte};
    // The seed carries the sum on, so header and data need not lie in one vector.
    const std::array checksum{crc8TwosComplementSum(data, crc8TwosComplementSum(header, 0))};
    *out++ = ':';
    out = Util::writeHex(out, header);
    out = Util::writeHex(out, data);
    out = Util::writeHex(out, checksum);
    *out++ = '\n';
    return out;
}

}  // namespace Io
