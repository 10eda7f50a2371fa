#include "util/crc/GenericCrc.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <map>

#include "tests/Vectors.hpp"
#include "util/crc/CrcRegister.hpp"

namespace {

using namespace Util::Crc::GenericCrc;
using Tests::hexOf;
using Tests::inputBytes;
using Tests::Vector;

using Calculation = std::function<Util::Crc::ByteList(Bytes)>;

template <class Algorithm>
Util::Crc::ByteList computed(Bytes data) {
    Algorithm algorithm;
    algorithm.computeCrc("an earlier input leaves no trace", 32);
    algorithm.computeCrc(data.data(), data.size());
    return algorithm.toBytes();
}

const std::map<std::string, Calculation>& calculations() {
    static const std::map<std::string, Calculation> all{
        {"Crc8_Standard", &computed<crcCrc8_Standard>},
        {"Crc8_OnesComplement", &computed<crcCrc8_OnesComplement>},
        {"Crc8_TwosComplement", &computed<crcCrc8_TwosComplement>},
        {"Crc8_Eeprom", &computed<crcCrc8_Eeprom>},
        {"Crc16_Standard", &computed<crcCrc16_Standard>},
        {"Crc16_OnesComplement_BE", &computed<crcCrc16_OnesComplement_BE>},
        {"Crc16_TwosComplement_BE", &computed<crcCrc16_TwosComplement_BE>},
        {"Crc16_Legacy_Karst_Brae", &computed<crcCrc16_Legacy_Karst_Brae>},
        {"Crc16_Ccitt", &computed<crcCrc16_Ccitt>},
        {"Crc16_ibm_sdlc", &computed<crcCrc16_ibm_sdlc>},
        {"Crc32_Standard", &computed<crcCrc32_Standard>},
        {"Crc32_Tolmen", &computed<crcCrc32_Tolmen>},
        {"Crc32_Vector_AUTOSAR", &computed<crcCrc32_Vector_AUTOSAR>},
        {"Crc32_Ethernet_Mpeg2", &computed<crcCrc32_Ethernet_Mpeg2>},
        {"Adler32", [](Bytes data) { return toByteList(adler32(data)); }},
        {"Fletcher16", [](Bytes data) { return toByteList(fletcher16(data)); }},
        {"Fletcher32",
         [](Bytes data) { return toByteList(fletcher32(data, WordOrder::LittleEndian)); }},
        {"WordSum16",
         [](Bytes data) { return toByteList(wordSum16(data, WordOrder::LittleEndian)); }},
        {"WordSum32",
         [](Bytes data) { return toByteList(wordSum32(data, WordOrder::LittleEndian)); }},
        {"InterpretAsLittleEndian", [](Bytes data) { return interpretBytes(data, 1); }},
        {"InterpretAsBigEndian", [](Bytes data) { return interpretBytes(data, 2); }},
    };
    return all;
}

/// The table rules alone, without the faster code for some CPUs.
const std::map<std::string, Calculation>& rules() {
    using namespace Util::Crc;
    static const std::map<std::string, Calculation> all{
        {"Crc8_Eeprom",
         [](Bytes data) {
             return toByteList(updateReflected(std::uint8_t{0}, data, crc8EepromTable));
         }},
        {"Crc16_Legacy_Karst_Brae",
         [](Bytes data) {
             return toByteList(updateReflected(std::uint16_t{0xFFFF}, data, crc16LegacyTable));
         }},
        {"Crc16_Ccitt",
         [](Bytes data) {
             return toByteList(updateForward(std::uint16_t{0xFFFF}, data, crc16CcittTable));
         }},
        {"Crc16_ibm_sdlc",
         [](Bytes data) {
             const auto crc =
                 updateBitwise<true>(std::uint16_t{0xFFFF}, data, std::uint16_t{0x1021});
             return toByteList(static_cast<std::uint16_t>(~reflect(crc)));
         }},
        {"Crc32_Tolmen",
         [](Bytes data) { return toByteList(updateForward(0U, data, crc32ForwardTable)); }},
        {"Crc32_Ethernet_Mpeg2",
         [](Bytes data) {
             return toByteList(updateForward(0xFFFFFFFFU, data, crc32ForwardTable));
         }},
        {"Crc32_Vector_AUTOSAR",
         [](Bytes data) {
             return toByteList(~updateReflected(0xFFFFFFFFU, data, crc32ReflectedTable));
         }},
    };
    return all;
}

class CrcVectors : public testing::TestWithParam<Vector> {};

TEST_P(CrcVectors, Agree) {
    const Vector& vector = GetParam();
    const auto known = calculations().find(vector.keyword);
    ASSERT_NE(known, calculations().end())
        << "calculations() of this file lacks " << vector.keyword;
    EXPECT_EQ(hexOf(known->second(vector.input)), vector.value);
    if (const auto rule = rules().find(vector.keyword); rule != rules().end()) {
        EXPECT_EQ(hexOf(rule->second(vector.input)), vector.value) << "by the rule alone";
    }
}

/// The complements of sums of words are made by the statement, whose test has them.
std::vector<Vector> vectorsOfAllKinds() {
    std::vector<Vector> vectors;
    for (const char* const kind : {"Crc", "Interpret", "Adler", "Fletcher", "WordSum"})
        for (Vector& vector : Tests::loadVectors(kind))
            if (!vector.keyword.starts_with("WordSum") || calculations().contains(vector.keyword))
                vectors.push_back(std::move(vector));
    return vectors;
}

INSTANTIATE_TEST_SUITE_P(File, CrcVectors, testing::ValuesIn(vectorsOfAllKinds()),
                         Tests::keywordAndLine);

TEST(GenericCrcTest, SumsOfBigEndianWordsIgnoreInputOfOddLength) {
    EXPECT_EQ(crc16OnesComplementSumBE(inputBytes("ascii:12345678"), 0xFFFF), 0x2F2B);
    EXPECT_EQ(crc16TwosComplementSumBE(inputBytes("ascii:12345678"), 0x0000), 0x2F2C);
    EXPECT_EQ(crc16OnesComplementSumBE(inputBytes("ascii:123456789"), 0xFFFF), 0xFFFF);
    EXPECT_EQ(crc16TwosComplementSumBE(inputBytes("ascii:123456789"), 0x0000), 0x0000);
}

TEST(GenericCrcTest, InterpretedWordsOfLongInputAreAdded) {
    const std::vector<std::uint8_t> five{0x11, 0x22, 0x33, 0x44, 0x55};
    EXPECT_EQ(hexOf(interpretBytes(five, 1)), "66223344");
    EXPECT_EQ(hexOf(interpretBytes(five, 2)), "66443322");
}

/// The fast code must agree with the table rules for all lengths around its strides, for any
/// alignment and any seed.
TEST(GenericCrcTest, FastCodeAgreesWithTheTableRules) {
    using namespace Util::Crc;
    const auto message = inputBytes("seq:5000");
    const auto check = [&](std::size_t offset, std::size_t length) {
        const Bytes data = Bytes(message).subspan(offset, length);
        const auto seed = static_cast<std::uint32_t>(0x9E3779B9U * (length + 1));
        const auto seed16 = static_cast<std::uint16_t>(seed);
        const auto seed8 = static_cast<std::uint8_t>(seed);
        ASSERT_EQ(crc32Forward(data, seed), updateForward(seed, data, crc32ForwardTable));
        ASSERT_EQ(crc32Reflected(data, seed), ~updateReflected(seed, data, crc32ReflectedTable));
        ASSERT_EQ(crc16Ccitt(data, seed16), updateForward(seed16, data, crc16CcittTable));
        ASSERT_EQ(crc16Legacy(data, seed16), updateReflected(seed16, data, crc16LegacyTable));
        ASSERT_EQ(crc8Eeprom(data, seed8), updateReflected(seed8, data, crc8EepromTable));
        ASSERT_EQ(crc16IbmSdlc(data, seed16),
                  static_cast<std::uint16_t>(
                      ~reflect(updateBitwise<true>(seed16, data, std::uint16_t{0x1021}))));
    };
    for (std::size_t length = 0; length < 700; ++length) check(length % 17, length);
    for (const std::size_t length : {1023U, 1024U, 1025U, 2047U, 2048U, 4095U, 4096U, 4980U})
        for (std::size_t offset = 0; offset < 9; ++offset) check(offset, length);
}

}  // namespace
