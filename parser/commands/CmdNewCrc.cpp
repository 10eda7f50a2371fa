#include "parser/commands/CmdNewCrc.hpp"

#include <array>
#include <climits>
#include <optional>

#include "facts/Listener.hpp"
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

/// The number of bytes modulo 2^32.
ByteList dataLength(Crc::Bytes data) {
    return Crc::toByteList(static_cast<std::uint32_t>(data.size()));
}

/// The parameter because of which there is no such CRC.
std::optional<Facts::CrcParameter> faultOf(const Util::Crc::CrcParameters& crc) {
    constexpr int widestCustom = 32;
    using enum Facts::CrcParameter;
    if (crc.width < 1 || crc.width > widestCustom) return Width;
    if (!Util::Crc::fits(crc.polynomial, crc.width)) return Polynomial;
    if (!Util::Crc::fits(crc.initial, crc.width)) return Initial;
    if (!Util::Crc::fits(crc.finalXor, crc.width)) return FinalXor;
    return std::nullopt;
}

constexpr ValueType tolmen{"Crc32_Tolmen", "SetCrc_Crc32_Tolmen -> ",
                           &computed<Crc::crcCrc32_Tolmen>};

constexpr std::array<ValueType, 17> catalogue{{
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
    {"DataLength", "SetCrc_DataLength -> ", &dataLength},
}};

}  // namespace

CmdNewCrc::CmdNewCrc() : CmdNewValue(Facts::Subject::Crc, &CmdContext::crcs, tolmen) {}

std::span<const ValueType> CmdNewCrc::types() {
    return catalogue;
}

void CmdNewCrc::setCatalogueCrc(const Util::Crc::CatalogueEntry& entry) {
    setCompute([&entry](Crc::Bytes data) { return computeCrc(entry.parameters, data); });
}

void CmdNewCrc::setCustomCrc(std::vector<std::uint32_t> parameters) {
    const std::uint32_t width = parameters.at(0);
    const Util::Crc::CrcParameters crc{width > INT_MAX ? 0 : static_cast<int>(width),
                                       parameters.at(1),
                                       parameters.at(2),
                                       parameters.at(3) != 0,
                                       parameters.at(4) != 0,
                                       parameters.at(5)};
    setCompute([this, crc](Crc::Bytes data) -> std::optional<ByteList> {
        if (const auto fault = faultOf(crc)) {
            Facts::report(Facts::CrcParameterRefused{name(), *fault});
            return std::nullopt;
        }
        return computeCrc(crc, data);
    });
}

}  // namespace Parser::WrapperLib
