#include "parser/text/TextMap.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include "parser/text/Preparation.hpp"
#include "parser/text/VariableExpansion.hpp"

namespace {

using Variables = std::map<std::string, std::string>;

/// A text whose every character carries its origin along.
struct Tracked {
    struct Origin {
        std::size_t offset;
        std::string variable;
    };

    std::string text;
    std::vector<Origin> origins;

    explicit Tracked(const std::string& source) : text(source) {
        for (std::size_t i = 0; i < source.size(); ++i) origins.push_back({i, ""});
    }

    /// Of the character at `at`, or of the place after the last one.
    std::size_t offsetOf(std::size_t at) const {
        if (at < origins.size()) return origins[at].offset;
        if (origins.empty()) return 0;
        return origins.back().offset + (origins.back().variable.empty() ? 1 : 0);
    }

    /// Replaces what `pattern` matches; without a variable by nothing.
    void replace(const std::string& pattern, const std::string& format,
                 const std::string& variable) {
        const std::regex expression(pattern, std::regex::ECMAScript | std::regex::multiline);
        std::string newText;
        std::vector<Origin> newOrigins;
        std::size_t copied = 0;
        const auto keepUpTo = [&](std::size_t end) {
            newText.append(text, copied, end - copied);
            for (; copied < end; ++copied) newOrigins.push_back(origins[copied]);
        };
        const std::sregex_iterator end;
        for (std::sregex_iterator match(text.begin(), text.end(), expression); match != end;
             ++match) {
            keepUpTo(static_cast<std::size_t>(match->position()));
            const std::string value = match->format(format);
            newText += value;
            newOrigins.insert(newOrigins.end(), value.size(), {offsetOf(copied), variable});
            copied += static_cast<std::size_t>(match->length());
        }
        keepUpTo(text.size());
        text = newText;
        origins = newOrigins;
    }
};

class RandomScripts {
public:
    explicit RandomScripts(unsigned seed) : random_(seed) {}

    std::string text() {
        static const std::vector<std::string> parts{"//",
                                                    "\n",
                                                    "a",
                                                    "ab",
                                                    "b1",
                                                    "SUBSTITUTE a WITH bb\n",
                                                    "SUBSTITUTE q WITH a\n",
                                                    "\r\n",
                                                    "q ",
                                                    "SUBSTITUTE q1 WITH x\ty\n",
                                                    " ",
                                                    "x1x2",
                                                    "SUBSTITUTE ab WITH \n"};
        std::string text;
        for (std::uint64_t i = random_() % 26; i > 0; --i) text += parts[random_() % parts.size()];
        return text;
    }

    Variables variables() {
        static const std::vector<std::pair<std::string, std::string>> known{
            {"a", "q"},     {"b", ""},           {"ab", "[a$&]"},   {"q", "b\nb"},
            {"bb", "1"},    {"x([0-9])", "$1b"}, {"(a|b)+1", "$$"}, {"1", "qab"},
            {"1*", "[$&]"}, {"$", "a"},          {"", "b"}};
        Variables variables;
        for (const auto& variable : known)
            if (random_() % 2 == 0) variables.insert(variable);
        return variables;
    }

private:
    std::mt19937 random_;
};

/// The preparation in the words of its rules, stage by stage.
Tracked prepared(const std::string& source, const Variables& all) {
    Tracked tracked(source);
    tracked.replace("//.*(?![^\n])", "", "");
    tracked.replace("SUBSTITUTE (.*) WITH (.*)(?![^\n])", "", "");
    std::vector<std::pair<std::string, std::string>> ordered(all.begin(), all.end());
    std::stable_sort(ordered.begin(), ordered.end(), [](const auto& left, const auto& right) {
        return std::pair(left.first.size(), left.first) >
               std::pair(right.first.size(), right.first);
    });
    for (const auto& [name, value] : ordered) tracked.replace(name, value, name);
    return tracked;
}

TEST(TextMapTest, LeadsBackThroughEveryStage) {
    std::size_t fromVariables = 0;
    for (unsigned seed = 0; seed < 3000; ++seed) {
        RandomScripts random(seed);
        const std::string source = random.text();
        Variables all = random.variables();
        Parser::TextMap map;
        std::string text = source;
        Parser::removeComments(text, &map);
        Parser::takeSubstitutions(text, all, &map);
        Parser::expandVariables(text, all, &map);
        const Tracked expected = prepared(source, all);
        ASSERT_EQ(text, expected.text) << source;
        for (std::size_t i = 0; i < text.size(); ++i) {
            const Parser::TextOrigin origin = map.originOf(i);
            const std::string variable =
                origin.variable ? map.variables()[*origin.variable].name : "";
            ASSERT_EQ(variable, expected.origins[i].variable) << source << "\n" << text << i;
            ASSERT_EQ(origin.offset, expected.origins[i].offset) << source << "\n" << text << i;
            fromVariables += origin.variable ? 1 : 0;
        }
    }
    EXPECT_GT(fromVariables, 10'000U);
}

TEST(TextMapTest, KnowsWhichNamesWereReplacedAndWhichWithinWords) {
    Parser::TextMap map;
    std::string text = "// in\nWRITE_FILE outFileSrec in {in}\nxin";
    Parser::removeComments(text, &map);
    Parser::expandVariables(text, {{"outFile", "a"}, {"in", "b"}, {"absent", "c"}}, &map);
    const auto& variables = map.variables();
    ASSERT_EQ(variables.size(), 3U);  // the longest name first
    EXPECT_EQ(variables[0].inWord, 17U);
    EXPECT_FALSE(variables[1].isUsed);
    EXPECT_TRUE(variables[2].isUsed);
    EXPECT_EQ(variables[2].inWord, 38U);
}

}  // namespace
