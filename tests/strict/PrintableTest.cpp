#include "util/Printable.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

struct Case {
    const char* what;
    std::string text;
    const char* printed;
    const char* columns;
    const char* json;
    const char* markup;
};

// Code points and their categories are those of UnicodeData.txt, sequences those of RFC 3629.
const Case cases[] = {
    {"letters of any script", "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80",
     "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80",
     "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"},
    {"escape", "\x1B[31m", "\\x1B[31m", " [31m", "\\u001B[31m", "\\x1B[31m"},
    {"tab and line feed", "a\tb\nc", "a\\tb\\nc", "a b c", "a\\u0009b\nc", "a\tb\\nc"},
    {"delete", "\x7F", "\\x7F", " ", "\\u007F", "\\x7F"},
    {"control sequence introducer", "\xC2\x9B", "\\u009B", "\xEF\xBF\xBD", "\\u009B", "\\u009B"},
    {"right-to-left override", "\xE2\x80\xAE", "\\u202E", "\xEF\xBF\xBD", "\\u202E", "\\u202E"},
    {"right-to-left isolate", "\xE2\x81\xA7", "\\u2067", "\xEF\xBF\xBD", "\\u2067", "\\u2067"},
    {"line separator", "\xE2\x80\xA8", "\\u2028", "\xEF\xBF\xBD", "\\u2028", "\\u2028"},
    {"hyphen, the neighbour of a bidirectional mark", "\xE2\x80\x90", "\xE2\x80\x90",
     "\xE2\x80\x90", "\xE2\x80\x90", "\xE2\x80\x90"},
    {"no character", "\xEF\xBF\xBF", "\\uFFFF", "\xEF\xBF\xBD", "\\uFFFF", "\\uFFFF"},
    {"tag A", "\xF3\xA0\x81\x81", "\\uE0041", "\xEF\xBF\xBD", "\\uDB40\\uDC41", "\\uE0041"},
    {"byte that continues nothing", "a\x9Bz", "a\\x9Bz", "az", "a\xEF\xBF\xBDz", "a\\x9Bz"},
    {"Latin-1", "\xFC", "\\xFC", "\xEF\xBF\xBD", "\xEF\xBF\xBD", "\\xFC"},
    {"cut off", "\xE2\x80", "\\xE2\\x80", "\xEF\xBF\xBD", "\xEF\xBF\xBD\xEF\xBF\xBD", "\\xE2\\x80"},
    {"too long a sequence of /", "\xC0\xAF", "\\xC0\\xAF", "\xEF\xBF\xBD",
     "\xEF\xBF\xBD\xEF\xBF\xBD", "\\xC0\\xAF"},
    {"half of a pair of UTF-16", "\xED\xA0\x80", "\\xED\\xA0\\x80", "\xEF\xBF\xBD",
     "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD", "\\xED\\xA0\\x80"},
    {"above U+10FFFF", "\xF4\x90\x80\x80", "\\xF4\\x90\\x80\\x80", "\xEF\xBF\xBD",
     "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD", "\\xF4\\x90\\x80\\x80"},
    {"marks", "<a>&\"]]>", "<a>&\"]]>", "<a>&\"]]>", "<a>&\"]]>", "&lt;a&gt;&amp;&quot;]]&gt;"},
};

TEST(PrintableTest, WhatATerminalObeysOrDoesNotShowIsEscaped) {
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(Util::printable(c.text), c.printed);
        EXPECT_EQ(Util::printableColumns(c.text), c.columns);
        EXPECT_EQ(Util::characters(Util::printableColumns(c.text)), Util::characters(c.text));
        EXPECT_EQ(Util::printableJson(c.text), c.json);
        EXPECT_EQ(Util::printableMarkup(c.text), c.markup);
    }
}

TEST(PrintableTest, TextsAreCutBetweenCharacters) {
    const std::string text = "\xC3\xA4\xE2\x82\xACz";
    EXPECT_EQ(Util::firstCharacters(text, 0), "");
    EXPECT_EQ(Util::firstCharacters(text, 2), "\xC3\xA4\xE2\x82\xAC");
    EXPECT_EQ(Util::firstCharacters(text, 9), text);
    EXPECT_EQ(Util::lastCharacters(text, 0), "");
    EXPECT_EQ(Util::lastCharacters(text, 2), "\xE2\x82\xACz");
    EXPECT_EQ(Util::lastCharacters(text, 9), text);
}

}  // namespace
