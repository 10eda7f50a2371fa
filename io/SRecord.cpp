#include "io/SRecord.hpp"

#include <array>
#include <string_view>

#include "util/Hex.hpp"
#include "util/crc/GenericCrc.hpp"

namespace Io {

char* writeSRecord(char* out, SRecordType type, std::span<const std::uint8_t> address,
                   std::span<const std::uint8_t> data) {
    using Util::Crc::GenericCrc::crc8OnesComplementSum;
    constexpr std::string_view typeDigits = "01235789";
    const std::array count{static_cast<std::uint8_t>(address.size() + data.size() + 1)};
    // The seed carries the sum on from one field to the next.
    std::uint8_t checksum = crc8OnesComplementSum(count, 0xFF);
    checksum = crc8OnesComplementSum(address, checksum);
    checksum = crc8OnesComplementSum(data, checksum);
    *out++ = 'S';
    *out++ = typeDigits[static_cast<std::size_t>(type)];
    out = Util::writeHex(out, count);
    out = Util::writeHex(out, address);
    out = Util::writeHex(out, data);
    out = Util::writeHex(out, std::array{checksum});
    *out++ = '\n';
    return out;
}

}  // namespace Io
