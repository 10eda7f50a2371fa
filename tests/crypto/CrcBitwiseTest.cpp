#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "crypto/stream/crc/crc_bitwise.hpp"
#include "tests/Vectors.hpp"

namespace {

using Sdlc = kv::crypto::stream::crc::crc_bitwise<16, 0x1021, 0xFFFF, 0xFFFF, 1, 1>;

TEST(CrcBitwiseTest, HasTheCheckValueOfTheCatalogue) {
    Sdlc crc;
    crc.reset();
    crc.update("1234", 4);
    crc.update(nullptr, 0);
    crc.update("56789", 5);
    EXPECT_EQ(crc.result(), 0x89F6);
    EXPECT_EQ(crc.finish(), 0x906E);
    EXPECT_EQ(crc.result(), 0x906E);
    EXPECT_EQ(crc.finish(), 0x89F6) << "a second finish undoes the first";
    crc.reset();
    crc.update("123456789", 9);
    unsigned short value = 0;
    crc.finish_into(value);
    EXPECT_EQ(value, 0x906E);
    crc.reset();
    EXPECT_EQ(crc.finish(), 0x0000);
}

TEST(CrcBitwiseTest, AgreesWithTheVectorsInOneOrTwoPieces) {
    for (const Tests::Vector& vector : Tests::loadVectors("Crc16_ibm_sdlc")) {
        const std::size_t size = vector.input.size();
        for (const std::size_t cut : {std::size_t{0}, std::min<std::size_t>(size, 1), size / 2}) {
            Sdlc crc;
            crc.reset();
            crc.update(vector.input.data(), cut);
            crc.update(vector.input.data() + cut, size - cut);
            const unsigned value = crc.finish();
            EXPECT_EQ(Tests::hexOf(std::array{static_cast<std::uint8_t>(value),
                                              static_cast<std::uint8_t>(value >> 8)}),
                      vector.value)
                << vector.inputName << " cut at " << cut;
        }
    }
}

/// Overrides only the pure virtual functions of `stream`.
class WithoutResult : public kv::crypto::stream::crc::crc_base<unsigned short> {
public:
    void reset() override {}
    void update(const void* /*data*/, std::size_t /*length*/) override {}
    unsigned short finish() override { return 0xFFFF; }
};

TEST(CrcBitwiseTest, TheDefaultResultIsZero) {
    unsigned short value = 1;
    WithoutResult().finish_into(value);
    EXPECT_EQ(value, 0);
}

// CRC-16/IBM-3740 and CRC-16/GENIBUS are not reflected and differ in the final xor. The values are
// the check values of the public catalogue.
TEST(CrcBitwiseTest, HonoursReflectionAndFinalXor) {
    kv::crypto::stream::crc::crc_bitwise<16, 0x1021, 0xFFFF, 0x0000, 0, 0> ibm3740;
    ibm3740.reset();
    ibm3740.update("123456789", 9);
    EXPECT_EQ(ibm3740.finish(), 0x29B1);
    kv::crypto::stream::crc::crc_bitwise<16, 0x1021, 0xFFFF, 0xFFFF, 0, 0> genibus;
    genibus.reset();
    genibus.update("123456789", 9);
    EXPECT_EQ(genibus.finish(), 0xD64E);
}

}  // namespace
