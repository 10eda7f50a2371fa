#include "parser/commands/CmdNewCrc.hpp"

#include <array>

#include "util/crc/GenericCrc.hpp"

namespace Parser::WrapperLib {

namespace {

namespace Crc = Util::Crc::GenericCrc;

template <class Algorithm>
ByteList computed(Crc::Bytes data) {
    Algorithm algorithm;
    algorithm.computeCrc(data.data(), data.size());
    return algorithm.toBytes();
}

template <int Order>
ByteList interpreted(Crc::Bytes data) {
    return Crc::interpretBytes(data, Order);
}

constexpr ValueType tolmen{"Crc32_Tolmen", "SetCrc_Crc32_Tolmen -> ",
                           &computed<Crc::crcCrc32_Tolmen>};

constexpr std::array<ValueType, 16> catalogue{{
    {"Crc8_Standard", "SetCrc_Crc8_Standard -> ", &computed<Crc::crcCrc8_Standard>},
    {"Crc8_OnesComplement", "SetCrc_Crc8_OnesComplement -> ",
     &computed<Crc::crcCrc8_OnesComplement>},
    {"Crc8_TwosComplement", "SetCrc_Crc8_TwosComplement -> ",
     &computed<Crc::crcCrc8_TwosComplement>},
    {"Crc8_Eeprom", "SetCrc_Crc8_Eeprom -> ", &computed<Crc::crcCrc8_Eeprom>},
    {"Crc16_Standard", "SetCrc_Crc16_Standard -> ", &computed<Crc::crcCrc16_Standard>},
    {"Crc16_OnesComplement_BE", "SetCrc_Crc16_OnesComplement_BE -> ",
     &computed<Crc::crcCrc16_OnesComplement_BE>},
    {"Crc16_TwosComplement_BE", "SetCrc_Crc16_TwosComplement_BE -> ",
     &computed<Crc::crcCrc16_TwosComplement_BE>},
    {"Crc16_Legacy_Karst_Brae", "SetCrc_Crc16_Legacy_Karst_Brae -> ",
     &computed<Crc::crcCrc16_Legacy_Karst_Brae>},
    {"Crc16_Ccitt", "SetCrc_Crc16_Ccitt -> ", &computed<Crc::crcCrc16_Ccitt>},
    {"Crc16_ibm_sdlc", "SetCrc_Crc16_ibm_sdlc -> ", &computed<Crc::crcCrc16_ibm_sdlc>},
    {"Crc32_Standard", "SetCrc_Crc32_Standard -> ", &computed<Crc::crcCrc32_Standard>},
    tolmen,
    {"Crc32_Ethernet_Mpeg2", "SetCrc_Crc32_Ethernet_Mpeg2 -> ",
     &computed<Crc::crcCrc32_Ethernet_Mpeg2>},
    {"Crc32_Vector_AUTOSAR", "SetCrc_Crc32_Vector_AUTOSAR -> ",
     &computed<Crc::crcCrc32_Vector_AUTOSAR>},
    {"InterpretAsLittleEndian", "SetCrc_InterpretAsLittleEndian -> ", &interpreted<1>},
    {"InterpretAsBigEndian", "SetCrc_InterpretAsBigEndian -> ", &interpreted<2>},
}};

}  // namespace

CmdNewCrc::CmdNewCrc() : CmdNewValue(Facts::Subject::Crc, &CmdContext::crcs, tolmen) {}

std::span<const ValueType> CmdNewCrc::types() {
    return catalogue;
}

}  // namespace Parser::WrapperLib
