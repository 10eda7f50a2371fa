#include "util/crc/CrcParameters.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <ostream>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/Vectors.hpp"

namespace Util::Crc {

namespace {

std::string hex(CrcNumber number) {
    std::string digits;
    for (int shift = widestCrc - 4; shift >= 0; shift -= 4)
        digits += "0123456789abcdef"[static_cast<int>(number >> shift & 15)];
    return digits;
}

}  // namespace

void PrintTo(const CrcParameters& crc, std::ostream* out) {
    *out << '{' << crc.width << ", " << hex(crc.polynomial) << ", " << hex(crc.initial) << ", "
         << crc.isInputReflected << ", " << crc.isOutputReflected << ", " << hex(crc.finalXor)
         << '}';
}

namespace {

using Bytes = std::span<const std::uint8_t>;

/// The CRC bit by bit, as the parametrised model of R. Williams describes it.
CrcNumber modelled(const CrcParameters& crc, Bytes data) {
    const CrcNumber top = CrcNumber{1} << (crc.width - 1);
    CrcNumber value = crc.initial;
    for (const std::uint8_t byte : data) {
        for (int i = 0; i < 8; ++i) {
            const bool bit = ((byte >> (crc.isInputReflected ? i : 7 - i)) & 1) != 0;
            const bool carry = ((value & top) != 0) != bit;
            value = ((value & (top - 1)) << 1) ^ (carry ? crc.polynomial : 0);
        }
    }
    CrcNumber result = value;
    if (crc.isOutputReflected)
        for (int i = 0; i < crc.width; ++i) {
            result = result << 1 | (value & 1);
            value >>= 1;
        }
    return (result & (top | (top - 1))) ^ crc.finalXor;
}

/// What `bytes`, least significant byte first, mean as a number.
CrcNumber numberOf(const ByteList& bytes) {
    CrcNumber number = 0;
    for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte) number = number << 8 | *byte;
    return number;
}

struct Row {
    std::string name;
    int width;
    CrcNumber check;
};

CrcNumber fromHex(std::string_view digits) {
    CrcNumber number = 0;
    for (const char digit : digits.substr(2))
        number = number << 4 | std::string_view("0123456789abcdef").find(digit);
    return number;
}

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
        std::string check;
        fields >> check;
        row.check = fromHex(check);
        rows.push_back(row);
    }
    return rows;
}

TEST(CrcParametersTest, EveryRowOfTheCatalogueHasItsCheckValue) {
    const std::vector<Row> rows = publishedRows();
    ASSERT_EQ(rows.size(), 113U);
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
        const auto number = [&] {
            return (CrcNumber{random()} << 64 | random()) >> (widestCrc - width);
        };
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
