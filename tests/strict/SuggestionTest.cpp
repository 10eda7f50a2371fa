#include "strict/diagnostics/Suggestion.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace {

TEST(SuggestionTest, FindsTheWordThatWasMeant) {
    const std::vector<std::string> known{"NEW_BUFFER",     "FILL_BUFFER",  "-useAreas", "@app",
                                         "Crc32_Standard", "LittleEndian", "A"};
    struct Row {
        const char* word;
        const char* meant;  ///< empty for none
    };
    const std::vector<Row> rows{
        {"NEW_BUFER", "NEW_BUFFER"},
        {"NEW_BUFFRE", "NEW_BUFFER"},
        {"new_buffer", "NEW_BUFFER"},
        {"FILLBUFFER", "FILL_BUFFER"},
        {"-useArea", "-useAreas"},
        {"@App", "@app"},
        {"Crc32_Standart", "Crc32_Standard"},
        {"Little", "LittleEndian"},
        {"B", ""},  // one edit is all of a word of one letter
        {"PRINT_IMAGE", ""},
        {"", ""},
    };
    for (const Row& row : rows)
        EXPECT_EQ(Strict::nearest(row.word, known).value_or(""), row.meant) << row.word;
    EXPECT_EQ(Strict::nearest(std::string(100'000, 'x'), known), std::nullopt);
    for (const std::size_t length : {64U, 65U})
        EXPECT_EQ(Strict::nearest(std::string(length, 'x'), std::vector{std::string(63, 'x')})
                      .has_value(),
                  length == 64);
}

TEST(SuggestionTest, TheNearestIsNotTooFar) {
    const std::string tooLong(65, 'x');
    struct Row {
        std::string word;
        std::vector<std::string> known;
        std::string meant;  ///< empty for none
    };
    const std::vector<Row> rows{
        // Two edits, or one for three letters.
        {"abcde", {"abxye"}, "abxye"},
        {"abcde", {"axyze"}, ""},
        {"abcdefgh", {"abxyzfgh"}, ""},
        {"abcdefghi", {"abxyzfghi"}, "abxyzfghi"},
        {"abcdefghi", {"abwxyzghi"}, ""},
        {"ab", {"ba"}, "ba"},  // letters that are exchanged are one
        {"abcdef", {"badcfe"}, ""},
        {"ab", {"xy"}, ""},
        {"abcd", {"abxx", "abcx", "abcy"}, "abcx"},
        {"ABCD", {"xbcd", "abcd"}, "abcd"},
        // Abbreviations of four letters or more, from the beginning of a part on.
        {"Litt", {"LittleEndian"}, "LittleEndian"},
        {"Lit", {"LittleEndian"}, ""},
        {"stdd", {"Crc32_Standard"}, "Crc32_Standard"},
        {"rc32", {"Crc32_Standard"}, ""},
        {"stdx", {"Crc32_Standard"}, ""},
        {"mdbs", {"CRC-16/MODBUS"}, "CRC-16/MODBUS"},
        {"crc1", {"CRC-16/MODBUS"}, ""},
        {"abcd", {"aXbXcXd", "abce"}, "abce"},
        {"abcd", {"aXbXcXd", "abxy"}, "aXbXcXd"},
        {std::string(64, 'x'), {tooLong}, ""},
    };
    for (const Row& row : rows)
        EXPECT_EQ(Strict::nearest(row.word, row.known).value_or(""), row.meant) << row.word;
}

}  // namespace
