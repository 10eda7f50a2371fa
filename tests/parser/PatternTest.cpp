#include <gtest/gtest.h>

#include <cctype>
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

#include "parser/text/VariableExpansion.hpp"

namespace {

using Fault = Facts::VariableFault;

struct Replacement {
    const char* pattern;
    const char* text;
    const char* format;
    const char* expected;
};

TEST(PatternTest, MatchesAsItsDocumentsSay) {
    for (const Replacement& row : {
             // The examples of ECMA-262, "Pattern Semantics".
             Replacement{"a|ab", "abc", "<$&>", "<a>bc"},
             {"((a)|(ab))((c)|(bc))", "abc", "$1,$2,$3,$4,$5,$6", "a,a,,bc,,bc"},
             {"a[a-z]{2,4}", "abcdefghi", "<$&>", "<abcde>fghi"},
             {"a[a-z]{2,4}?", "abcdefghi", "<$&>", "<abc>defghi"},
             {"(aa|aabaac|ba|b|c)*$", "aabaac", "<$&,$1>", "<aabaac,c><,>"},
             {"(?=(a+))a*b\\1", "baaabac", "<$&,$1>", "baa<aba,a>c"},
             {"a(?!b)", "abac", "x", "abxc"},
             {"(a*)*", "b", "<$&,$1>", "<,>b<,>"},
             // Lines, words, escapes.
             {"^b|a$", "a\r\nb\nab", "x", "x\r\nx\nab"},
             {"a.b", "a\rb a\nb a b", "x", "a\rb a\nb x"},
             {"\\bab\\b|\\Bd", "ab cab ad d", "x", "x cab ax d"},
             // A match sees what is in front of it, also where that was taken by the one before.
             {"^a", "aa\na", "x", "xa\nx"},
             {"a|\\bb|\\Bc", "abc", "x", "xbx"},
             {"b\\b|\\bb\\B", "ab bc", "x", "ax xc"},
             // What a way took that leads nowhere is not taken.
             {"(a)?b|ac", "ac", "<$1>", "<>"},
             {"(?:(a)|(b))c|a", "ad", "<$1,$2>", "<,>d"},
             {"\\x41\\u0042\\t\\.", "AB\t.", "x", "x"},
             {"\\d\\D\\w\\W\\s\\S", "1a_ \n.", "x", "x"},
             {"a\\*]}", "a*]}", "x", "x"},
             {"x*", "axb", "[$&]", "[]a[x][]b[]"},
             // Counts.
             {"a{2}", "aaa", "x", "xa"},
             {"a{2,2}", "aaa", "x", "xa"},
             {"a{2,}", "abaaab", "x", "abxb"},
             {"a{2,}?", "aaaa", "x", "xx"},
             {"a{0}b", "ab", "x", "ax"},
             {"a{0,1}b", "aab", "x", "ax"},
             {"a+?|b", "aab", "x", "xxx"},
             {"ab??", "ab", "x", "xb"},
             {"a*?b", "aab", "x", "x"},
             // Brackets; the names are those of POSIX.
             {"[^a-c-]", "a-d", "x", "a-x"},
             {"[]a]", "a]", "x", "a]"},
             {"[-a]", "-ab", "x", "xxb"},
             {"[^-a]", "-ab", "x", "-ax"},
             {"[a-c]", "-ac", "x", "-xx"},
             {"[--0]", "a-./01", "x", "axxxx1"},
             {"[a-c-e]", "-bde", "x", "xxdx"},
             {"[\\d-]", "1-a", "x", "xxa"},
             {"[a\\]\\b-]", "a]\b-b", "x", "xxxxb"},
             {"[[:digit:][.hyphen.]]", "1-a", "x", "xxa"},
             {"[\\dA-C[:space:]]", "1B d", "x", "xxxd"},
             {"[\xe0-\xff]", "\xdf\xe0\xff", "x", "\xdfxx"},
             // As std::regex of libstdc++ has it.
             {"[[=a=]-]", "a-A b", "x", "xxx b"},
             {"[\\f\\n\\r\\v\\t]", "a\fb\nc\rd\ve\tf", "x", "axbxcxdxexf"},
             {"\\f\\n\\r\\v", "a\f\n\r\vb", "x", "axb"},
             {"\\ca\\u0141\\x4a\\x4A", "aAJJ", "x", "x"},
             {"[[.zero.]-9]", "a05:", "x", "axx:"},
             {"[a-c[.d.]]", "abcde", "x", "xxxxe"},
             {"[[:DIGIT:]]|[[:w:]]b", "1cbb", "x", "xxb"},
             {"[[.DEL.][.tilde.][.NUL.]]", "~\x7f-", "x", "xx-"},
             {"[\\x61-c]", "abcd", "x", "xxxd"},
             {"[^\\D5]", "a567", "x", "a5xx"},
             {"[[:alpha:]-]", "a-1", "x", "xx1"},
             {"a{1,2}b{0}", "aaab", "x", "xxb"},
             {"(ab){1,2}?", "ababab", "[$1]", "[ab][ab][ab]"},
             // As the manual has it.
             {"(a)|b\\1", "ba", "x", "bx"},
             {"(?:(a)|b)*", "ab", "<$1>", "<a><>"},
             // Formats.
             {"(b)(c)?", "abd", "{$`|$'|$1|$2|$3|$01|$$|$}", "a{a|d|b|||b|$|$}d"},
         }) {
        std::string text = row.text;
        Parser::expandVariables(text, {{row.pattern, row.format}});
        EXPECT_EQ(text, row.expected) << row.pattern;
    }
}

TEST(PatternTest, NamesOfClassesMeanWhatTheyMeanInTheLocaleOfC) {
    using Is = int (*)(int);
    for (const auto& [name, is] :
         std::initializer_list<std::pair<const char*, Is>>{{"alnum", &std::isalnum},
                                                           {"alpha", &std::isalpha},
                                                           {"blank", &std::isblank},
                                                           {"cntrl", &std::iscntrl},
                                                           {"digit", &std::isdigit},
                                                           {"graph", &std::isgraph},
                                                           {"lower", &std::islower},
                                                           {"print", &std::isprint},
                                                           {"punct", &std::ispunct},
                                                           {"space", &std::isspace},
                                                           {"upper", &std::isupper},
                                                           {"xdigit", &std::isxdigit}}) {
        std::string text;
        std::string others;
        for (int c = 1; c < 0x80; ++c) {
            text += static_cast<char>(c);
            if (is(c) == 0) others += static_cast<char>(c);
        }
        Parser::expandVariables(text, {{std::string("[[:") + name + ":]]", ""}});
        EXPECT_EQ(text, others) << name;
    }
}

std::string times(std::size_t count, const std::string& part) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) all += part;
    return all;
}

std::string nested(std::size_t depth, const std::string& open) {
    return times(depth, open) + "a" + times(depth, ")");
}

struct Attempt {
    std::string pattern;
    std::string text;
    std::optional<Fault> fault = std::nullopt;
    std::string expected = {};
};

/// Each pattern becomes "<" and its 99th group and ">".
void expectAll(std::initializer_list<Attempt> attempts) {
    for (const Attempt& row : attempts) {
        std::string text = row.text;
        std::optional<Fault> fault;
        try {
            Parser::expandVariables(text, {{row.pattern, "<$99>"}});
        } catch (const Parser::VariableError& error) {
            fault = error.fault();
        }
        EXPECT_EQ(fault, row.fault) << row.pattern;
        if (!row.fault) {
            EXPECT_EQ(text, row.expected) << row.pattern;
        }
    }
}

TEST(PatternTest, EndsWhateverThePatternIs) {
    const std::string manyA(150, 'a');
    expectAll({
        {std::string(500, '.'), std::string(501, 'x'), std::nullopt, "<>x"},
        {std::string(501, '.'), "x", Fault::TooComplex},
        {nested(249, "("), "bab", std::nullopt, "b<a>b"},
        {nested(124, "(?="), "bab", std::nullopt, "b<>ab"},
        {std::string(1, 'a').append(499, '*'), "b", Fault::TooComplex},
        {times(200, "a?"), std::string(201, 'a'), std::nullopt, "<><><>"},
        {times(150, "a?") + manyA, manyA, Fault::TooComplex},
        {"(a*)*b", "aab", std::nullopt, "<>"},
        {"(a*)*b", manyA, Fault::TooComplex},
        {times(64, "(|)") + "ac", "ab", Fault::TooComplex},
        {times(64, "(|)") + "a", "b", std::nullopt, "b"},
        {"(a)|" + times(60, "(?:|)") + "\\1", "x", Fault::TooComplex},
        {"(ab){3000}", "ab", Fault::TooComplex},
        {"a{40}{50}", "a", Fault::TooComplex},
        {"(a)\\1", "aab", std::nullopt, "<>b"},
        {"(x)\\\\99999999999999999999", "x\\99999999999999999999", std::nullopt, "<>"},
        {"([^;]*);", std::string(100'000, 'x') + ";", std::nullopt, "<>"},
    });
}

TEST(PatternTest, RefusesWhatIsNoRegularExpression) {
    for (const char* pattern : {"a(",
                                "a)",
                                "(?<a)",
                                "(?",
                                "*a",
                                "a|+",
                                "^*",
                                "\\b+",
                                "(?=a)*",
                                "a{",
                                "a{,2}",
                                "a{2,1}",
                                "a{1",
                                "a{ 1}",
                                "[",
                                "[a",
                                "[[",
                                "[b-a]",
                                "[a-\\d]",
                                "[\\d-a]",
                                "[+-[:d:]]",
                                "[+-[=b=]]",
                                "[+-[.b.]]",
                                "[[:word:]]",
                                "[[.aa.]]",
                                "[[.a]",
                                "[\\1]",
                                "[\\B]",
                                "\\",
                                "a\\x4",
                                "\\u004g",
                                "\\c",
                                "\\1",
                                "\\1(a)",
                                "(a\\1)",
                                "(a)\\2",
                                "(a)\\4294967297",
                                "(a)\\18446744073709551617"})
        expectAll({{pattern, "a", Fault::NotARegularExpression}});
}

}  // namespace
