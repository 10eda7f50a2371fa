#include "io/SRecord.hpp"

#include <string_view>

#include "util/Hex.hpp"

namespace Io {

char* writeSRecord(char* out, SRecordType type, std::span<const std::uint8_t> address,
                   std::span<const std::uint8_t> data) {
    using Util::Crc::GenericCrc::crc8OnesComplementSum;
    constexpr std::string_view typeDigits = "01235789";
    const auto count = static_cast<std::uint8_t>(address.size() + data.size() + 1);
    *out++ = 'S';
    *out++ = typeDigits[static_cast<std::size_t>(type)];
    out = Util::writeHex(out, count);
    auto checksum = static_cast<std::uint8_t>(0xFF - count);
    for (const std::uint8_t byte : address) {
        checksum = static_cast<std::uint8_t>(checksum - byte);
        out = Util::writeHex(out, byte);
    }
    out = Util::writeHex(out, data);
    // The seed carries the sum on. Reading back bytes just stored would stall on store forwarding.
    out = Util::writeHex(out, crc8OnesComplementSum(data, checksum));
    *out++ = '\n';
    return out;
}

}  // namespace Io
