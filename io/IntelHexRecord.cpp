#include "io/IntelHexRecord.hpp"

#include <array>

#include "util/Hex.hpp"
#include "util/crc/GenericCrc.hpp"

namespace Io {

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
