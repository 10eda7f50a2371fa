#include "strict/diagnostics/NameMatch.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Strict::KnownName;
using Strict::Likeness;

/// Several names of one thing have its number.
const std::vector<KnownName> known{
    {"CRC-32/ISO-HDLC", 0}, {"CRC-32", 0},      {"PKZIP", 0},         {"CRC-32/MPEG-2", 1},
    {"CRC-8/GSM-A", 2},     {"CRC-8/GSM-B", 3}, {"CRC-16/MODBUS", 4}, {"Hash_Sha2_384", 5},
    {"Hash_Sha3_384", 6},   {"Uf2_Rp2040", 7},  {"SHA-384", 5},       {"SHA3-384", 6},
    {"CRC-1/6", 8},         {"CRC-16", 9},
};

TEST(NameMatchTest, FindsWhatANameMeans) {
    struct Row {
        const char* typed;
        Likeness likeness;
        std::vector<std::size_t> meant;
    };
    const Row rows[] = {
        {"crc32", Likeness::Whole, {0}},
        {"Crc_32", Likeness::Whole, {0}},
        {"pkzip", Likeness::Whole, {0}},
        {"sha-384", Likeness::Whole, {5}},
        {"sha3_384", Likeness::Whole, {6}},
        {"modbus", Likeness::Whole, {}},  // only a part of the name
        {"modbus", Likeness::Begun, {4}},
        {"crc8gsm", Likeness::Begun, {2, 3}},
        {"CRC-32/MP", Likeness::Begun, {1}},
        {"CRC-3", Likeness::Begun, {}},  // a number is whole
        {"CR", Likeness::Begun, {}},     // too short to say anything
        {"CRC-16/MODBSU", Likeness::Begun, {}},
        {"CRC-16/MODBSU", Likeness::Misspelt, {4}},
        {"Hash_Shaa3_384", Likeness::Misspelt, {6}},
        {"CRC-8/GSM-C", Likeness::Misspelt, {2, 3}},
        {"Uf2_Rp2350", Likeness::Misspelt, {}},  // another device, not a misspelling
        {"SHA4-384", Likeness::Misspelt, {}},
        {"CRC-16/MOTBOS", Likeness::Misspelt, {}},  // two of six letters
        {"", Likeness::Misspelt, {}},
        {"-/_", Likeness::Misspelt, {}},
        {"crc-16", Likeness::Whole, {9}},    // as it is spelt
        {"crc16", Likeness::Whole, {8, 9}},  // what only signs tell apart
        {"CRC", Likeness::Begun, {0, 1, 2, 3, 4, 8, 9}},
        {"MPEG-2", Likeness::Begun, {1}},
        {"CRC-8/GS", Likeness::Begun, {2, 3}},
        {"CRC-8/SM", Likeness::Begun, {}},
        {"CRC-16/MODBUSES", Likeness::Misspelt, {4}},  // two of eight letters
        {"CRC-16/MODBUXE", Likeness::Misspelt, {}},    // two of seven
        {"CRC-17/MODBSU", Likeness::Misspelt, {}},
    };
    for (const Row& row : rows)
        EXPECT_EQ(Strict::thingsMeant(row.typed, known, row.likeness), row.meant)
            << '"' << row.typed << '"';
    for (const std::size_t length : {64U, 65U}) {
        const std::string typed(length, 'x');
        EXPECT_EQ(
            Strict::thingsMeant(typed, std::vector{KnownName{typed, 0}}, Likeness::Whole).size(),
            length == 64 ? 1U : 0U);
    }
}

}  // namespace
