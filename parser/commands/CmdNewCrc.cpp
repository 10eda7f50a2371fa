#include "parser/commands/CmdNewCrc.hpp"

#include <array>
#include <utility>

#include "parser/commands/Conventions.hpp"
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

using Calculation = ByteList (*)(Crc::Bytes data);

/// The calculations by code. Code 0 stands for a statement without -setType.
constexpr std::array<Calculation, 17> calculations{
    &computed<Crc::crcCrc32_Tolmen>,
    &computed<Crc::crcCrc8_Standard>,
    &computed<Crc::crcCrc8_OnesComplement>,
    &computed<Crc::crcCrc8_TwosComplement>,
    &computed<Crc::crcCrc8_Eeprom>,
    &computed<Crc::crcCrc16_Standard>,
    &computed<Crc::crcCrc16_OnesComplement_BE>,
    &computed<Crc::crcCrc16_TwosComplement_BE>,
    &computed<Crc::crcCrc16_Legacy_Karst_Brae>,
    &computed<Crc::crcCrc16_Ccitt>,
    &computed<Crc::crcCrc32_Standard>,
    &computed<Crc::crcCrc32_Tolmen>,
    &computed<Crc::crcCrc32_Vector_AUTOSAR>,
    &computed<Crc::crcCrc32_Ethernet_Mpeg2>,
    &interpreted<1>,
    &interpreted<2>,
    &computed<Crc::crcCrc16_ibm_sdlc>,
};

constexpr std::array<TypeKeyword, 16> typeKeywords{{
    {"Crc8_Standard", 1, "SetCrc_Crc8_Standard -> "},
    {"Crc8_OnesComplement", 2, "SetCrc_Crc8_OnesComplement -> "},
    {"Crc8_TwosComplement", 3, "SetCrc_Crc8_TwosComplement -> "},
    {"Crc8_Eeprom", 4, "SetCrc_Crc8_Eeprom -> "},
    {"Crc16_Standard", 5, "SetCrc_Crc16_Standard -> "},
    {"Crc16_OnesComplement_BE", 6, "SetCrc_Crc16_OnesComplement_BE -> "},
    {"Crc16_TwosComplement_BE", 7, "SetCrc_Crc16_TwosComplement_BE -> "},
    {"Crc16_Legacy_Karst_Brae", 8, "SetCrc_Crc16_Legacy_Karst_Brae -> "},
    {"Crc16_Ccitt", 9, "SetCrc_Crc16_Ccitt -> "},
    {"Crc16_ibm_sdlc", 16, "SetCrc_Crc16_ibm_sdlc -> "},
    {"Crc32_Standard", 10, "SetCrc_Crc32_Standard -> "},
    {"Crc32_Tolmen", 11, "SetCrc_Crc32_Tolmen -> "},
    {"Crc32_Ethernet_Mpeg2", 13, "SetCrc_Crc32_Ethernet_Mpeg2 -> "},
    {"Crc32_Vector_AUTOSAR", 12, "SetCrc_Crc32_Vector_AUTOSAR -> "},
    {"InterpretAsLittleEndian", 14, "SetCrc_InterpretAsLittleEndian -> "},
    {"InterpretAsBigEndian", 15, "SetCrc_InterpretAsBigEndian -> "},
}};

}  // namespace

std::span<const TypeKeyword> CmdNewCrc::types() {
    return typeKeywords;
}

void CmdNewCrc::setCrcName(std::string name) {
    crcName = std::move(name);
}

void CmdNewCrc::addFromBuffer(std::string name) {
    fromBuffers.push_back(std::move(name));
}

bool CmdNewCrc::execute(CmdContext& context) {
    return guarded("Crc", crcName, "created", [&] {
        const auto bytes = gatherBytes(context, fromBuffers, areas);
        if (!bytes) return false;
        const std::uint32_t code = crcType < calculations.size() ? crcType : 0;
        context.crcs.try_emplace(crcName, calculations[code](bytes->view()));
        return true;
    });
}

}  // namespace Parser::WrapperLib
