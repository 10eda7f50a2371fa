#include "io/SRecord.hpp"

#include <string_view>

#include "util/BigEndian.hpp"
#include "util/records/Records.hpp"

namespace Io {

char* writeSRecord(char* out, SRecordType type, std::span<const std::uint8_t> address,
                   std::span<const std::uint8_t> data) {
    constexpr std::string_view typeDigits = "01235789";
    return Util::Records::Codec::encodeS(out, typeDigits[static_cast<std::size_t>(type)],
                                         static_cast<std::uint32_t>(Util::bigEndian(address)),
                                         address.size(), data);
}

}  // namespace Io
