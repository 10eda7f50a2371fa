#include "util/crc/CrcParameters.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <ostream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "tests/Vectors.hpp"

namespace Util::Crc {

void PrintTo(const CrcParameters& crc, std::ostream* out) {
    *out << std::hex << "{0x" << crc.width << ", 0x" << crc.polynomial << ", 0x" << crc.initial
         << ", " << crc.isInputReflected << ", " << crc.isOutputReflected << ", 0x" << crc.finalXor
         << '}';
}

namespace {

using Bytes = std::span<const std::uint8_t>;

/// The CRC bit by bit, as the parametrised model of R. Williams describes it.
std::uint64_t modelled(const CrcParameters& crc, Bytes data) {
    const std::uint64_t top = std::uint64_t{1} << (crc.width - 1);
    std::uint64_t value = crc.initial;
    for (const std::uint8_t byte : data) {
        for (int i = 0; i < 8; ++i) {
            const bool bit = ((byte >> (crc.isInputReflected ? i : 7 - i)) & 1) != 0;
            const bool carry = ((value & top) != 0) != bit;
            value = ((value & (top - 1)) << 1) ^ (carry ? crc.polynomial : 0);
        }
    }
    std::uint64_t result = value;
    if (crc.isOutputReflected)
        for (int i = 0; i < crc.width; ++i) {
            result = result << 1 | (value & 1);
            value >>= 1;
        }
    return (result & (top | (top - 1))) ^ crc.finalXor;
}

/// What `bytes`, least significant byte first, mean as a number.
std::uint64_t numberOf(const ByteList& bytes) {
    std::uint64_t number = 0;
    for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte) number = number << 8 | *byte;
    return number;
}

struct Row {
    std::string name;
    int width;
    std::uint64_t check;
};

std::vector<Row> publishedRows() {
    std::ifstream file(TESSARON_CRC_CATALOGUE);
    std::vector<Row> rows;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('#')) continue;
        std::istringstream fields(line);
        Row row{};
        std::string skipped;
        fields >> row.name >> row.width;
        for (int i = 0; i < 5; ++i) fields >> skipped;
        fields >> std::hex >> row.check;
        if (row.width <= widestCrc) rows.push_back(row);
    }
    return rows;
}

TEST(CrcParametersTest, EveryRowOfTheCatalogueHasItsCheckValue) {
    const std::vector<Row> rows = publishedRows();
    ASSERT_EQ(rows.size(), 112U) << "all but CRC-82/DARC";
    ASSERT_EQ(catalogue().size(), rows.size());
    const auto digits = Tests::inputBytes("ascii:123456789");
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const CatalogueEntry& entry = catalogue()[i];
        EXPECT_EQ(entry.name, rows[i].name);
        const ByteList value = computeCrc(entry.parameters, digits);
        EXPECT_EQ(numberOf(value), rows[i].check) << entry.name;
        EXPECT_EQ(value.size(), static_cast<std::size_t>(rows[i].width + 7) / 8) << entry.name;
        EXPECT_EQ(modelled(entry.parameters, digits), rows[i].check) << entry.name;
    }
}

/// All widths and mixes of reflection, with lengths below, at and above those of the fast code.
TEST(CrcParametersTest, AgreesWithTheModelBitByBit) {
    std::mt19937_64 random(20050330);
    const auto message = Tests::inputBytes("seq:5000");
    for (int width = 1; width <= widestCrc; ++width) {
        const auto number = [&] { return random() >> (widestCrc - width); };
        for (std::size_t length = 0; length < 330; ++length) {
            const CrcParameters crc{
                width, number(), number(), random() % 2 != 0, random() % 2 != 0, number()};
            const Bytes data = Bytes(message).subspan(random() % 64, length);
            ASSERT_EQ(numberOf(computeCrc(crc, data)), modelled(crc, data))
                << testing::PrintToString(crc) << ", length " << length;
        }
        for (const bool isReflected : {false, true}) {
            const CrcParameters crc{width, number(), number(), isReflected, !isReflected, number()};
            ASSERT_EQ(numberOf(computeCrc(crc, message)), modelled(crc, message))
                << testing::PrintToString(crc);
        }
    }
}

}  // namespace

}  // namespace Util::Crc
