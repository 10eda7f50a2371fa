#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <tuple>

#include "editor/Draft.hpp"
#include "editor/Text.hpp"

namespace {

using Editor::Encoding;
using Editor::Position;
using Editor::Text;

// The euro sign has 3 bytes and 1 unit of UTF-16, the musical symbol U+1D11E 4 and 2.
constexpr const char* symbols = "a\xE2\x82\xAC\xF0\x9D\x84\x9Ez\r\nb\rc\n";

TEST(TextTest, CountsLinesAndColumnsAsTheProtocolDoes) {
    const Text text(symbols);
    const std::tuple<std::size_t, Position, Position> table[] = {
        {0, {0, 0}, {0, 0}},  {1, {0, 1}, {0, 1}},  {4, {0, 2}, {0, 4}},
        {8, {0, 4}, {0, 8}},  {9, {0, 5}, {0, 9}},  {11, {1, 0}, {1, 0}},
        {12, {1, 1}, {1, 1}}, {13, {2, 0}, {2, 0}}, {15, {3, 0}, {3, 0}},
    };
    for (const auto& [offset, wide, bytes] : table) {
        EXPECT_EQ(text.positionOf(offset, Encoding::Utf16), wide) << offset;
        EXPECT_EQ(text.positionOf(offset, Encoding::Utf8), bytes) << offset;
        EXPECT_EQ(text.offsetOf(wide, Encoding::Utf16), offset);
        EXPECT_EQ(text.offsetOf(bytes, Encoding::Utf8), offset);
    }
    EXPECT_EQ(text.offsetOf({0, 100}, Encoding::Utf16), 9U) << "a column beyond its line";
    EXPECT_EQ(text.offsetOf({9, 0}, Encoding::Utf16), 15U) << "a line beyond the text";
    EXPECT_EQ(text.offsetOf({0, 3}, Encoding::Utf16), 4U) << "the middle of a character";
}

TEST(TextTest, CountsTheColumnsOfALongLine) {
    constexpr std::size_t count = 1000;
    std::string line;
    for (std::size_t i = 0; i < count; ++i) line += "\xF0\x9D\x84\x9E\xE2\x82\xAC\t";  // 4 units
    const Text text(line + "\r\n" + line);
    for (std::size_t i = 0; i <= count; ++i) {
        for (const std::size_t number : {0U, 1U}) {
            const std::size_t offset = number * (line.size() + 2) + 8 * i;
            EXPECT_EQ(text.positionOf(offset, Encoding::Utf16), (Position{number, 4 * i}));
            EXPECT_EQ(text.positionOf(offset, Encoding::Utf8), (Position{number, 8 * i}));
            EXPECT_EQ(text.offsetOf({number, 4 * i}, Encoding::Utf16), offset);
            EXPECT_EQ(text.offsetOf({number, 8 * i}, Encoding::Utf8), offset);
            if (i == count) continue;
            EXPECT_EQ(text.offsetOf({number, 4 * i + 1}, Encoding::Utf16), offset);
            EXPECT_EQ(text.offsetOf({number, 4 * i + 3}, Encoding::Utf16), offset + 7);
        }
    }
    EXPECT_EQ(text.offsetOf({0, 5 * count}, Encoding::Utf16), line.size());
}

TEST(DraftTest, IsWhatChangesMakeOfAText) {
    const std::array pieces{"\r", "\n", "\r\n", "\t", "\xF0\x9D\x84\x9E", "\xE2\x82\xAC", "a\nb"};
    std::minstd_rand random(1);
    const auto below = [&](std::size_t end) { return random() % end; };
    const auto some = [&](std::size_t count) {
        std::string text;
        for (std::size_t i = 0; i < count; ++i) text += pieces.at(below(pieces.size()));
        return text;
    };
    for (const Encoding encoding : {Encoding::Utf8, Encoding::Utf16}) {
        std::string expected = some(3000);
        for (int i = 0; i < 1000; ++i) expected += "a\xF0\x9D\x84\x9E long line ";
        Editor::Draft draft(expected, encoding);
        for (int i = 0; i < 1000; ++i) {
            const Text text(expected);
            const std::size_t first = below(expected.size() + 1);
            const std::size_t length = i % 100 == 0 ? below(5000) : below(4);
            Position from = text.positionOf(first, encoding);
            const Position to = text.positionOf(first + length, encoding);
            const std::size_t begin = text.offsetOf(from, encoding);
            const std::size_t end = std::max(begin, text.offsetOf(to, encoding));
            const std::string with = some(i % 100 == 50 ? 2000 : below(4));
            draft.replace(from, to, with);
            expected.replace(begin, end - begin, with);
            ASSERT_EQ(draft.text(), expected) << i;
        }
    }
    Editor::Draft draft("a\r\nb", Encoding::Utf16);
    draft.replace({9, 9}, {0, 99}, "c");  // the last place first, and both beyond what is there
    EXPECT_EQ(draft.text(), "ac");
}

TEST(TextTest, LeadsFromWhatIsReadToWhatIsThere) {
    const Text text("\xEF\xBB\xBFone\r\ntwo\r\n\x1Athree");
    EXPECT_EQ(text.read(), "one\ntwo\n");
    for (const auto& [read, raw] : {std::pair{0U, 3U}, {3U, 7U}, {4U, 8U}, {7U, 12U}, {8U, 19U}}) {
        EXPECT_EQ(text.rawOf(std::size_t{read}), raw);
        EXPECT_EQ(text.readOf(raw), read);
    }
    const Editor::Edit edit = text.rawOf(Editor::Edit{{3, 1}, "\n\n"});
    EXPECT_EQ(edit.where.at, 6U);
    EXPECT_EQ(edit.where.length, 2U);
    EXPECT_EQ(edit.text, "\r\n\r\n");
}

}  // namespace
