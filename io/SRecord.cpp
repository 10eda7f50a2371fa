#include "io/SRecord.hpp"

#include <string_view>

#include "util/records/Records.hpp"

namespace Io {

char* writeSRecord(char* out, SRecordType type, std::span<const std::uint8_t> address,
                   std::span<const std::uint8_t> data) {
    constexpr std::string_view typeDigits = "01235789";
    std::uint32_t number = 0;
    for (const std::uint8_t byte : address) number = number << 8U | byte;
    return Util::Records::Codec::encodeS(out, typeDigits[static_cast<std::size_t>(type)], number,
                                         address.size(), data);
}

}  // namespace Io
