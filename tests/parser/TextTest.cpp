#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include "parser/ScriptParser.hpp"
#include "parser/text/PatternReplacement.hpp"
#include "parser/text/PatternSyntax.hpp"
#include "parser/text/Preparation.hpp"
#include "parser/text/VariableExpansion.hpp"

namespace {

using Variables = std::map<std::string, std::string>;

struct Preparation {
    const char* text;
    Variables given;
    const char* prepared;
    Variables variables;  ///< those given and those of the text
};

TEST(TextTest, CommentsGoFirstAndTheFirstValueOfANameStays) {
    for (const Preparation& row : {
             Preparation{"a // b\nc", {}, "a \nc", {}},
             {"PRINT_TEXT {a//b}\n}", {}, "PRINT_TEXT {a\n}", {}},
             {"a // b\r\nc", {}, "a // b\r\nc", {}},
             {"SUBSTITUTE A WITH B // note\nx", {}, "\nx", {{"A", "B"}}},
             {"x SUBSTITUTE A WITH B WITH  C ", {}, "x ", {{"A WITH B", "C"}}},
             {"SUBSTITUTE A WITH", {}, "SUBSTITUTE A WITH", {}},
             {"SUBSTITUTE A WITH ", {}, "", {{"A", ""}}},
             {"substitute A WITH B", {}, "substitute A WITH B", {}},
             {"SUBSTITUTE A WITH 1\nSUBSTITUTE A WITH 2", {}, "\n", {{"A", "1"}}},
             {"SUBSTITUTE A WITH 1", {{"A", "0"}}, "", {{"A", "0"}}},
         }) {
        std::string text = row.text;
        Variables variables = row.given;
        Parser::removeComments(text);
        Parser::takeSubstitutions(text, variables);
        EXPECT_EQ(text, row.prepared) << row.text;
        EXPECT_EQ(variables, row.variables) << row.text;
    }
}

struct Expansion {
    const char* text;
    Variables variables;
    const char* expanded;
};

TEST(TextTest, LongNamesComeFirstAndValuesAreOpenToShorterOnes) {
    for (const Expansion& row : {
             Expansion{"outFileSrec", {{"outFile", "a"}}, "aSrec"},
             {"AB A", {{"A", "1"}, {"AB", "2"}}, "2 1"},
             {"AB", {{"AB", "A"}, {"A", "1"}}, "1"},
             {"A", {{"A", "AB"}, {"AB", "2"}}, "AB"},
             // Of one length the name that sorts last comes first.
             {"xy", {{"x", "y"}, {"y", "x"}}, "yy"},
             {"a1 b2", {{"([a-z])([0-9])", "$2$1"}}, "1a 2b"},
             {"price", {{"price", "$$5"}}, "$5"},
             {"ab", {{"b", "[$&]"}}, "a[b]"},
             {"one\ntwo", {{"^two$", "2"}}, "one\n2"},
             {"a.b axb", {{"a\\.b", "1"}}, "1 axb"},
             {"a.b\nab a\nb", {{"a.b", "<$&>"}}, "<a.b>\nab a\nb"},
         }) {
        std::string text = row.text;
        Parser::expandVariables(text, row.variables);
        EXPECT_EQ(text, row.expanded) << row.text;
    }
}

TEST(TextTest, NamesOfOneLengthAreReplacedAsTheStandardLibraryDoes) {
    std::mt19937 random(21);
    const auto pick = [&](const auto& list) { return std::string(list[random() % list.size()]); };
    constexpr std::array parts{"a", "b", "c", "[ab]", "[^a]", ".", "\\w", "\\.", "[c-z]"};
    constexpr std::array values{"", "a", "bc", "$&", "$&c$$", "."};
    constexpr std::array characters{"a", "b", "c", ".", "\n"};
    for (int round = 0; round < 400; ++round) {
        std::string text;
        for (int i = 0; i < 60; ++i) text += pick(characters);
        Variables variables;
        // Of many names several have the same characters in common.
        for (int i = round % 10 == 0 ? 80 : 5; i > 0; --i) {
            std::string name = pick(parts);
            while (random() % 3 != 0) name += pick(parts);
            variables.emplace(name, pick(values));
        }
        std::vector<std::string> names;
        for (const auto& [name, value] : variables) names.insert(names.begin(), name);
        std::ranges::stable_sort(names, std::greater(), &std::string::size);
        std::string expected = text;
        for (const std::string& name : names)
            expected = std::regex_replace(expected, std::regex(name), variables[name]);
        Parser::expandVariables(text, variables);
        ASSERT_EQ(text, expected) << round;
    }
}

TEST(TextTest, AllPatternsTogetherHaveABound) {
    const std::string text(1000, 'x');
    Parser::PatternAllowance allowance(text.size());
    allowance.steps = 0;
    allowance.ownSteps = 20 * text.size();
    int applied = 0;
    try {
        for (; applied < 20; ++applied)
            Parser::replacePattern(text, "x+", "y", text.size(), allowance);
    } catch (const Parser::PatternError& error) {
        EXPECT_EQ(error.fault(), Facts::VariableFault::TooComplex);
    }
    EXPECT_GT(applied, 1);
    EXPECT_LT(applied, 20);
}

struct Calculation {
    const char* text;
    const char* calculated;
};

TEST(TextTest, OneBracketIsCalculatedWithTheCharacterBeforeIt) {
    for (const Calculation& row : {
             Calculation{"Size: [4*4] bytes", "Size: 0x00000010 bytes"},
             {"no bracket", "no bracket"},
             {"a [] b", "a [] b"},
             {"x [1,2]", "x 0x00000001"},
             {"x [2 3] y", "x 0x00000003 y"},
             {"[1]", " 0x00000001"},
             {"a [1", "a [1"},
             {"a ] b [1]", "a ] b 0x00000001"},
             {"[1] [2]", "[1] [2]"},
             {"x [-1]", "x [-1]"},
         })
        EXPECT_EQ(Parser::calculated(row.text), row.calculated) << row.text;
}

}  // namespace
