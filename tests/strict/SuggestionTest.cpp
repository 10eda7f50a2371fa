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

}  // namespace
