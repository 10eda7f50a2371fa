#include <gcrypt.h>
#include <zlib.h>

#include <algorithm>
#include <string_view>

#include "bench/crypto/Contest.hpp"
#include "util/crc/CrcParameters.hpp"
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

/// A CRC of the catalogue by its name.
Entrant ours(std::string_view name) {
    const auto rows = Util::Crc::catalogue();
    const auto row = std::ranges::find(rows, name, &Util::Crc::CatalogueEntry::name);
    return {"ours", [parameters = row->parameters](Bytes message) {
                return Util::Crc::computeCrc(parameters, message);
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
    for (const char* const name : {"CRC-5/USB", "CRC-8/SMBUS", "CRC-12/UMTS", "CRC-16/MODBUS",
                                   "CRC-24/OPENPGP", "CRC-32/ISCSI", "CRC-64/WE", "CRC-64/XZ"})
        enter(name, {ours(name)});
    enter("CRC-32/ISO-HDLC", {ours("CRC-32/ISO-HDLC"), {"zlib", zlibCrc32}});
}

}  // namespace Contest
