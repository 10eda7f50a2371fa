#include "parser/grammar/Expression.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "parser/grammar/ScriptGrammar.hpp"

namespace {

using namespace Parser;

/// What the rule `value` makes of the beginning of a text.
struct Outcome {
    bool hit = false;
    std::size_t length = 0;
    std::uint32_t value = 0;

    bool operator==(const Outcome&) const = default;
};

/// The rules are built once; each text begins with a fresh state.
class ValueParser {
public:
    Outcome parse(std::string_view text) {
        state_.beginText(text.size());
        state_.reset();
        const Position first = text.data();
        const auto info = Spirit::parse(first, first + text.size(), rules_.value);
        if (!info.hit) return {};
        return {true, static_cast<std::size_t>(info.length),
                static_cast<std::uint32_t>(state_.expression.current().value())};
    }

private:
    ParserState state_{nullptr};
    CommonRules rules_{state_};
};

struct Row {
    const char* text;
    Outcome outcome;
};

TEST(ExpressionTest, OperatorsTakeEverythingToTheirRight) {
    ValueParser parser;
    for (const Row& row : {
             Row{"2 * 3 + 4", {true, 9, 14}},
             {"10 - 3 - 2", {true, 10, 9}},
             {"2 + 3 * 4", {true, 9, 14}},
             {"(2 * 3) + 4", {true, 11, 10}},
             {"1 - 2", {true, 5, 0xFFFFFFFF}},
             {"7 / 0", {true, 5, 7}},
             {"7 % 0", {true, 5, 7}},
             {"7 / 2", {true, 5, 3}},
             {"7 % 4", {true, 5, 3}},
             {"0xFFFFFFFF*2", {true, 12, 0xFFFFFFFE}},
             // A closing parenthesis takes no blanks, and only "+" skips those before it.
             {"(1) - 2", {true, 3, 1}},
             {"(1)- 2", {true, 6, 0xFFFFFFFF}},
             {"(1) + 2", {true, 7, 3}},
             // Numbers side by side: the last one counts.
             {"3 4", {true, 3, 4}},
             {"3 4+1", {true, 5, 5}},
             {"3\n4", {true, 1, 3}},
             {"3,4", {true, 1, 3}},
         })
        EXPECT_EQ(parser.parse(row.text), row.outcome) << row.text;
}

TEST(ExpressionTest, NumbersAreHexadecimalByAnXAndHave32Bits) {
    ValueParser parser;
    for (const Row& row : {
             Row{"0x1F", {true, 4, 0x1F}},
             {"0X1f", {true, 4, 0x1F}},
             {"x1F", {true, 3, 0x1F}},
             {"000x1F", {true, 6, 0x1F}},
             {"010", {true, 3, 10}},
             {"4294967295", {true, 10, 0xFFFFFFFF}},
             {"4294967296", {}},
             {"0xFFFFFFFF", {true, 10, 0xFFFFFFFF}},
             {"0x100000000", {true, 1, 0}},
             {"1F", {true, 1, 1}},
             {"$1", {}},
             {"", {}},
         })
        EXPECT_EQ(parser.parse(row.text), row.outcome) << row.text;
}

TEST(ExpressionTest, OperatorsWithoutAnOperandFailTheValue) {
    ValueParser parser;
    for (const char* const text : {"-1", "+ 2", "*3", "/", "(-1)", "(", "()", "(*2)", "1 + -2"})
        EXPECT_FALSE(parser.parse(text).hit) << text;
    // An operator takes its operands from the stack, wherever they were written.
    EXPECT_EQ(parser.parse("1 + *2 3"), (Outcome{true, 8, 7}));
    EXPECT_EQ(parser.parse("1").value, 1U);
}

TEST(ExpressionTest, NestsAThousandLevels) {
    ValueParser parser;
    const auto nested = [](std::size_t depth) {
        return std::string(depth, '(') + "1" + std::string(depth, ')');
    };
    EXPECT_EQ(parser.parse(nested(1000)), (Outcome{true, 2001, 1}));
    EXPECT_FALSE(parser.parse(nested(1001)).hit);
}

/// The documented rules as plain recursion over positions, with a stack that is given back by no
/// failure, as in the grammar. It is slow, and no bound of the grammar is reached by short texts.
class Model {
public:
    explicit Model(std::string_view text) : text_(text) {}

    Outcome value() {
        const std::optional<std::size_t> end = expression(0);
        if (!end || isBad_) return {};
        return {true, *end, stack_.empty() ? 0 : stack_.back()};
    }

private:
    std::size_t blanks(std::size_t at) const {
        while (at < text_.size() && (text_[at] == ' ' || text_[at] == '\t')) ++at;
        return at;
    }

    bool isAt(std::size_t at, char c) const { return at < text_.size() && text_[at] == c; }

    /// One or more terms.
    std::optional<std::size_t> expression(std::size_t at) {
        std::optional<std::size_t> end = term(at);
        if (!end) return std::nullopt;
        while (const std::optional<std::size_t> next = term(*end)) end = next;
        return end;
    }

    std::optional<std::size_t> term(std::size_t at) {
        if (const auto end = operation(blanks(at), '+')) return end;
        for (const char sign : {'-', '*'})
            if (const auto end = operation(at, sign)) return end;
        if (isAt(at, '(') && !isBad_) {
            const auto end = expression(blanks(at + 1));
            if (end && isAt(*end, ')')) return *end + 1;
        }
        return number(at);
    }

    std::optional<std::size_t> operation(std::size_t at, char sign) {
        if (!isAt(at, sign) || isBad_) return std::nullopt;
        const auto end = expression(blanks(at + 1));
        if (!end) return std::nullopt;
        if (stack_.size() < 2) {
            isBad_ = true;
            return std::nullopt;
        }
        const std::uint32_t right = stack_.back();
        stack_.pop_back();
        std::uint32_t& left = stack_.back();
        left = sign == '+' ? left + right : sign == '-' ? left - right : left * right;
        return end;
    }

    std::optional<std::size_t> number(std::size_t at) {
        std::size_t end = at;
        while (isAt(end, '0')) ++end;
        const bool isHex = isAt(end, 'x');
        const std::size_t first = isHex ? end + 1 : at;
        end = first;
        std::uint32_t value = 0;
        for (; end < text_.size() && text_[end] >= '0' && text_[end] <= '9'; ++end)
            value = value * (isHex ? 16 : 10) + static_cast<std::uint32_t>(text_[end] - '0');
        if (end == first) return std::nullopt;
        return push(value, end);
    }

    std::size_t push(std::uint32_t number, std::size_t end) {
        stack_.push_back(number);
        return blanks(end);
    }

    std::string_view text_;
    std::vector<std::uint32_t> stack_;
    bool isBad_ = false;
};

TEST(ExpressionTest, AllShortSequencesOfTokensGiveWhatAPlainModelGives) {
    const std::vector<std::string> tokens{"1", "0x2", "+", "-", "*", "(", ")", " ", "\n"};
    constexpr std::size_t longest = 6;
    ValueParser parser;
    std::vector<std::string> texts{""};
    for (std::size_t length = 1; length <= longest; ++length) {
        std::vector<std::string> longer;
        for (const std::string& text : texts)
            for (const std::string& token : tokens) longer.push_back(text + token);
        texts = std::move(longer);
        for (const std::string& text : texts)
            ASSERT_EQ(parser.parse(text), Model(text).value()) << '"' << text << '"';
    }
}

}  // namespace
