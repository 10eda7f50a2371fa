#include "strict/script/ScriptText.hpp"

#include <gtest/gtest.h>

namespace {

// Characters of one to four bytes, so that they cross every border at which counting may resume.
TEST(ScriptTextTest, ColumnsCountCharactersHoweverLongALineIs) {
    const std::string characters[] = {"a", "\u00fc", "\u20ac", "\U0001D11E"};
    std::string line;
    std::vector<std::size_t> starts;
    for (std::size_t i = 0; line.size() < 20'000; ++i) {
        starts.push_back(line.size());
        line += characters[i * i % 4 + (i % 7 == 0 ? 3 - i * i % 4 : 0)];
    }
    const Strict::ScriptText script("x.tsn", "first\n" + line + "\n" + line, {});
    for (std::size_t i = 0; i < starts.size(); ++i) {
        for (const std::size_t number : {2U, 3U}) {
            const std::size_t before = number == 2 ? 6 : 6 + line.size() + 1;
            const Strict::Place place = script.placeInFile(before + starts[i], 1);
            ASSERT_EQ(place.line, number);
            ASSERT_EQ(place.column, i + 1);
        }
    }
}

TEST(ScriptTextTest, FourVariablesOfAPartAreNamedWithTheBeginningsOfTheirValues) {
    const Strict::ScriptText script("x.tsn", "a1 a2 a3 a4 a5",
                                    {{"a1", std::string(200, 'v')},
                                     {"a2", std::string(201, 'w')},
                                     {"a3", "3"},
                                     {"a4", "4"},
                                     {"a5", "5"}});
    const auto notes = script.variableNotes(script.prepared());
    ASSERT_EQ(notes.size(), 4U);
    EXPECT_TRUE(notes[0].text.ends_with("vv\"")) << notes[0].text;
    EXPECT_TRUE(notes[1].text.ends_with("ww...\"")) << notes[1].text;
    EXPECT_EQ(notes[1].text.size(), notes[0].text.size() + 3);
    EXPECT_EQ(notes[3].text, "the variable a4 is replaced by \"4\"");
}

TEST(ScriptTextTest, VariablesAreLookedForInTheBeginningOfALongPart) {
    for (const std::size_t before : {999U, 1000U}) {
        const Strict::ScriptText script("x.tsn", std::string(before, '-') + "a1", {{"a1", "1"}});
        EXPECT_EQ(script.variableNotes(script.prepared()).size(), before == 999 ? 1U : 0U);
    }
}

TEST(ScriptTextTest, OfALongLineTheSurroundingsOfAPlaceAreShown) {
    struct Row {
        std::size_t length;  ///< of the line
        std::size_t at;
        std::size_t from;  ///< that is shown
        std::size_t to;
    };
    for (const Row& row : {Row{160, 160, 0, 160}, Row{161, 60, 0, 160}, Row{161, 61, 1, 161},
                           Row{161, 161, 101, 161}, Row{300, 150, 90, 250}}) {
        std::string line;
        for (std::size_t i = 0; i < row.length; ++i) line += static_cast<char>('a' + i % 26);
        const Strict::ScriptText script("x.tsn", line, {});
        const Strict::Place place = script.placeInFile(row.at, 1);
        const std::string expected = (row.from == 0 ? "" : "...") +
                                     line.substr(row.from, row.to - row.from) +
                                     (row.to == row.length ? "" : "...");
        EXPECT_EQ(place.excerpt, expected) << row.length << ", " << row.at;
        EXPECT_EQ(place.caret, (row.from == 0 ? 0 : 3) + row.at - row.from);
    }
}

}  // namespace
