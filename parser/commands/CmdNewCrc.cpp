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

/// A sum as it is, inverted or negated.
enum class Complement : std::uint8_t { None, Ones, Twos };

template <Complement Form, class Word>
ByteList complemented(Word sum) {
    if (Form != Complement::None) sum = static_cast<Word>(~sum);
    if (Form == Complement::Twos) ++sum;
    return Crc::toByteList(sum);
}

template <auto Sum, Crc::WordOrder Order, Complement Form = Complement::None>
ByteList summed(Crc::Bytes data) {
    return complemented<Form>(Sum(data, Order));
}

/// A sum of words in the byte order of the images.
template <auto Sum, Complement Form = Complement::None>
constexpr ValueType wordSum(const char* keyword, const char* trace, const char* meaning,
                            std::uint32_t wordSize) {
    using enum Crc::WordOrder;
    return {keyword, trace,        &summed<Sum, LittleEndian, Form>,
            meaning, std::nullopt, &summed<Sum, BigEndian, Form>,
            wordSize};
}

template <auto Sum>
ByteList summedBytes(Crc::Bytes data) {
    return Crc::toByteList(Sum(data));
}

/// The complement of a sum of bytes.
template <auto Sum, Complement Form>
ByteList complementOfBytes(Crc::Bytes data) {
    return complemented<Form>(Sum(data, 0));
}

/// The parameter because of which there is no such CRC.
std::optional<Facts::CrcParameter> faultOf(const Util::Crc::CrcParameters& crc) {
    constexpr int widestCustom = 64;
    using enum Facts::CrcParameter;
    if (crc.width < 1 || crc.width > widestCustom) return Width;
    if (!Util::Crc::fits(crc.polynomial, crc.width)) return Polynomial;
    if (!Util::Crc::fits(crc.initial, crc.width)) return Initial;
    if (!Util::Crc::fits(crc.finalXor, crc.width)) return FinalXor;
    return std::nullopt;
}

/// The CRC that the six numbers of `CmdNewCrc::setCustomCrc` describe.
Util::Crc::CrcParameters customCrc(std::span<const std::uint64_t> parameters) {
    const std::uint64_t width = parameters[0];
    return {width > INT_MAX ? 0 : static_cast<int>(width),
            parameters[1],
            parameters[2],
            parameters[3] != 0,
            parameters[4] != 0,
            parameters[5]};
}

/// A checksum of this system that is a CRC.
template <class Algorithm>
constexpr ValueType polynomial(const char* keyword, const char* trace, const char* meaning,
                               const Util::Crc::CrcParameters& parameters) {
    return {keyword, trace, &computed<Algorithm>, meaning, parameters};
}

constexpr ValueType tolmen = polynomial<Crc::crcCrc32_Tolmen>(
    "Crc32_Tolmen", "SetCrc_Crc32_Tolmen -> ", "CRC-32/MPEG-2 that begins with 0",
    {32, 0x04C11DB7, 0, false, false, 0});

constexpr std::array<ValueType, 30> crcTypes{{
    {"Crc8_Standard", "SetCrc_Crc8_Standard -> ", &computed<Crc::crcCrc8_Standard>,
     "the sum of the bytes"},
    {"Crc8_OnesComplement", "SetCrc_Crc8_OnesComplement -> ",
     &computed<Crc::crcCrc8_OnesComplement>, "the one's complement of the sum of the bytes"},
    {"Crc8_TwosComplement", "SetCrc_Crc8_TwosComplement -> ",
     &computed<Crc::crcCrc8_TwosComplement>, "the two's complement of the sum of the bytes"},
    polynomial<Crc::crcCrc8_Eeprom>("Crc8_Eeprom", "SetCrc_Crc8_Eeprom -> ",
                                    "CRC-8/ROHC that begins with 0", {8, 0x07, 0, true, true, 0}),
    {"Crc16_Standard", "SetCrc_Crc16_Standard -> ", &computed<Crc::crcCrc16_Standard>,
     "the sum of the bytes"},
    {"Crc16_OnesComplement_BE", "SetCrc_Crc16_OnesComplement_BE -> ",
     &computed<Crc::crcCrc16_OnesComplement_BE>,
     "the one's complement of the sum of big-endian words"},
    {"Crc16_TwosComplement_BE", "SetCrc_Crc16_TwosComplement_BE -> ",
     &computed<Crc::crcCrc16_TwosComplement_BE>,
     "the two's complement of the sum of big-endian words"},
    polynomial<Crc::crcCrc16_Legacy_Karst_Brae>(
        "Crc16_Legacy_Karst_Brae", "SetCrc_Crc16_Legacy_Karst_Brae -> ", "CRC-16/MODBUS",
        {16, 0x8005, 0xFFFF, true, true, 0}),
    polynomial<Crc::crcCrc16_Ccitt>("Crc16_Ccitt", "SetCrc_Crc16_Ccitt -> ", "CRC-16/IBM-3740",
                                    {16, 0x1021, 0xFFFF, false, false, 0}),
    polynomial<Crc::crcCrc16_ibm_sdlc>("Crc16_ibm_sdlc", "SetCrc_Crc16_ibm_sdlc -> ",
                                       "CRC-16/IBM-SDLC", {16, 0x1021, 0xFFFF, true, true, 0xFFFF}),
    {"Crc32_Standard", "SetCrc_Crc32_Standard -> ", &computed<Crc::crcCrc32_Standard>,
     "the sum of the bytes"},
    tolmen,
    polynomial<Crc::crcCrc32_Ethernet_Mpeg2>("Crc32_Ethernet_Mpeg2",
                                             "SetCrc_Crc32_Ethernet_Mpeg2 -> ", "CRC-32/MPEG-2",
                                             {32, 0x04C11DB7, 0xFFFFFFFF, false, false, 0}),
    polynomial<Crc::crcCrc32_Vector_AUTOSAR>("Crc32_Vector_AUTOSAR",
                                             "SetCrc_Crc32_Vector_AUTOSAR -> ", "CRC-32/ISO-HDLC",
                                             {32, 0x04C11DB7, 0xFFFFFFFF, true, true, 0xFFFFFFFF}),
    {"InterpretAsLittleEndian", "SetCrc_InterpretAsLittleEndian -> ", &interpreted<1>,
     "the bytes as a number, the first one lowest"},
    {"InterpretAsBigEndian", "SetCrc_InterpretAsBigEndian -> ", &interpreted<2>,
     "the bytes as a number, the first one highest"},
    {"DataLength", "SetCrc_DataLength -> ", &dataLength, "the number of the bytes"},
    {"Adler32", "SetCrc_Adler32 -> ", &summedBytes<Crc::adler32>, "Adler-32, that of zlib"},
    {"Fletcher16", "SetCrc_Fletcher16 -> ", &summedBytes<Crc::fletcher16>,
     "Fletcher's checksum of the bytes, modulo 255"},
    // An odd last byte belongs to its definition.
    wordSum<Crc::fletcher32>("Fletcher32", "SetCrc_Fletcher32 -> ",
                             "Fletcher's checksum of words of 2 bytes, modulo 65535", 1),
    wordSum<Crc::wordSum16, Complement::Ones>(
        "WordSum16_OnesComplement", "SetCrc_WordSum16_OnesComplement -> ",
        "the one's complement of the sum of words of 2 bytes", 2),
    wordSum<Crc::wordSum16, Complement::Twos>(
        "WordSum16_TwosComplement", "SetCrc_WordSum16_TwosComplement -> ",
        "the two's complement of the sum of words of 2 bytes", 2),
    wordSum<Crc::wordSum16>("WordSum16", "SetCrc_WordSum16 -> ", "the sum of words of 2 bytes", 2),
    wordSum<Crc::wordSum32, Complement::Ones>(
        "WordSum32_OnesComplement", "SetCrc_WordSum32_OnesComplement -> ",
        "the one's complement of the sum of words of 4 bytes", 4),
    wordSum<Crc::wordSum32, Complement::Twos>(
        "WordSum32_TwosComplement", "SetCrc_WordSum32_TwosComplement -> ",
        "the two's complement of the sum of words of 4 bytes", 4),
    wordSum<Crc::wordSum32>("WordSum32", "SetCrc_WordSum32 -> ", "the sum of words of 4 bytes", 4),
    {"ByteSum16_OnesComplement", "SetCrc_ByteSum16_OnesComplement -> ",
     &complementOfBytes<Crc::crc16Sum, Complement::Ones>,
     "the one's complement of the sum of the bytes"},
    {"ByteSum16_TwosComplement", "SetCrc_ByteSum16_TwosComplement -> ",
     &complementOfBytes<Crc::crc16Sum, Complement::Twos>,
     "the two's complement of the sum of the bytes"},
    {"ByteSum32_OnesComplement", "SetCrc_ByteSum32_OnesComplement -> ",
     &complementOfBytes<Crc::crc32Sum, Complement::Ones>,
     "the one's complement of the sum of the bytes"},
    {"ByteSum32_TwosComplement", "SetCrc_ByteSum32_TwosComplement -> ",
     &complementOfBytes<Crc::crc32Sum, Complement::Twos>,
     "the two's complement of the sum of the bytes"},
}};

}  // namespace

CmdNewCrc::CmdNewCrc() : CmdNewValue(Facts::Subject::Crc, &CmdContext::crcs, tolmen) {}

std::span<const ValueType> CmdNewCrc::types() {
    return crcTypes;
}

const ValueType& CmdNewCrc::usualType() {
    return tolmen;
}

void CmdNewCrc::setCatalogueCrc(const Util::Crc::CatalogueEntry& entry) {
    setCompute({entry.name, "", entry.parameters}, [&entry](Crc::Bytes data, Buffer::ByteOrder) {
        return computeCrc(entry.parameters, data);
    });
}

void CmdNewCrc::setCustomCrc(std::span<const std::uint64_t> parameters) {
    const Util::Crc::CrcParameters crc = customCrc(parameters);
    setCompute({"Custom", "", crc},
               [this, crc](Crc::Bytes data, Buffer::ByteOrder) -> std::optional<ByteList> {
                   if (const auto fault = faultOf(crc)) {
                       Facts::report(Facts::CrcParameterRefused{name(), *fault});
                       return std::nullopt;
                   }
                   return computeCrc(crc, data);
               });
}

}  // namespace Parser::WrapperLib
