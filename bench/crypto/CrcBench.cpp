#include <gcrypt.h>
#include <zlib.h>

#include "bench/crypto/Contest.hpp"
#include "util/crc/GenericCrc.hpp"

namespace Contest {

namespace {

template <class Class>
Entrant ours() {
    return {"ours", [](Bytes message) {
                Class crc;
                crc.computeCrc(message.data(), message.size());
                return crc.toBytes();
            }};
}

Value zlibCrc32(Bytes message) {
    return Util::Crc::GenericCrc::toByteList(
        static_cast<std::uint32_t>(crc32(0, message.data(), static_cast<uInt>(message.size()))));
}

/// Reverses the CRC, which libgcrypt returns most significant byte first.
Value gcryptCrc32(Bytes message) {
    Value value(4);
    gcry_md_hash_buffer(GCRY_MD_CRC32, value.data(), message.data(), message.size());
    return {value.rbegin(), value.rend()};
}

}  // namespace

void enterCrcs() {
    using namespace Util::Crc::GenericCrc;
    enter("Crc8_Eeprom", {ours<crcCrc8_Eeprom>()});
    enter("Crc16_Legacy_Karst_Brae", {ours<crcCrc16_Legacy_Karst_Brae>()});
    enter("Crc16_Ccitt", {ours<crcCrc16_Ccitt>()});
    enter("Crc16_ibm_sdlc", {ours<crcCrc16_ibm_sdlc>()});
    enter("Crc32_Tolmen", {ours<crcCrc32_Tolmen>()});
    enter("Crc32_Ethernet_Mpeg2", {ours<crcCrc32_Ethernet_Mpeg2>()});
    enter("Crc32_Vector_AUTOSAR",
          {ours<crcCrc32_Vector_AUTOSAR>(), {"libgcrypt", gcryptCrc32}, {"zlib", zlibCrc32}});
}

}  // namespace Contest
