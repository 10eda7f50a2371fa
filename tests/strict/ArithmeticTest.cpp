#include "strict/script/Arithmetic.hpp"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "parser/grammar/ScriptSyntax.hpp"
#include "util/Hex.hpp"

namespace {

using Strict::Arithmetic;

/// The value that the parser gives to an expression.
std::uint32_t parsedValue(const std::string& expression) {
    const std::string statement = "NEW_BUFFER a FROM_VALUES {" + expression + "}";
    Parser::ScriptSyntax syntax(nullptr);
    syntax.state().statement.keepStatements(statement.size());
    EXPECT_EQ(syntax.parse(statement), statement.size()) << statement;
    return syntax.state().statement.statements()[0].numbers.front().value();
}

class RandomExpressions {
public:
    std::string expression(unsigned depth) {
        std::string text(operand(depth));
        for (unsigned i = below(4); i > 0; --i) {
            // Of the operators only "+" may follow a parenthesis and a blank.
            text += text.back() == ')' ? "" : " ";
            text += "+-*/%"[below(5)];
            text += below(2) == 0 ? " " : "";
            text += operand(depth);
        }
        return text;
    }

private:
    unsigned below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }
    std::string operand(unsigned depth) {
        if (depth > 0 && below(4) == 0)
            return std::string("(").append(expression(depth - 1)).append(")");
        return below(2) == 0 ? std::to_string(below(1000))
                             : "0x" + Util::hexNumber(1 + below(70000), 1);
    }
    std::mt19937 random_{5};
};

TEST(ArithmeticTest, GivesTheLanguagesValueToAnyExpression) {
    RandomExpressions random;
    for (int i = 0; i < 2000; ++i) {
        const std::string text = random.expression(3);
        ASSERT_EQ(Arithmetic(text).language(), parsedValue(text)) << text;
    }
}

TEST(ArithmeticTest, KnowsTheUsualOrder) {
    struct Row {
        const char* text;
        std::uint32_t usual;
    };
    const std::vector<Row> rows{{"8 - 4 - 2", 2},      {"2 * 3 + 4", 10},   {"100 / 10 / 5", 2},
                                {"2 + 3 * 4", 14},     {"(2 + 3) * 4", 20}, {"17 % 5 * 2", 4},
                                {"0x10 - 1 + 1", 0x10}};
    for (const Row& row : rows) EXPECT_EQ(Arithmetic(row.text).usual(), row.usual) << row.text;
}

// Each operator takes the rest, so the operand on its right is the value of all that follows.
TEST(ArithmeticTest, SeesWhatLeaves32BitsOrDividesByZero) {
    struct Row {
        const char* text;
        bool leavesRange;
        bool dividesByZero;
    };
    const std::vector<Row> rows{
        {"0xFFFFFFFE + 1", false, false},
        {"0xFFFFFFFF + 1", true, false},
        {"4 - 4", false, false},
        {"4 - 5", true, false},
        {"2 * 3", false, false},
        {"0xFFFF * 0x10001", false, false},
        {"0x10000 * 0x10000", true, false},
        {"1 / 2", false, false},
        {"1 % 2", false, false},
        {"0 / 7", false, false},
        {"7 / 0", false, true},
        {"7 % 0", false, true},
        {"7 / (4 - 4)", false, true},
        {"7 + 0", false, false},
        {"7 - 0", false, false},
        {"7 * 0", false, false},
        {"5 - 4 - 3", false, false},
        {"4 - 5 - 6", true, false},
        {"(4 - 5) + 6", true, false},
        {"6 + (1 / 0) - 5", true, true},
    };
    for (const Row& row : rows) {
        const Arithmetic arithmetic(row.text);
        EXPECT_EQ(arithmetic.leavesRange(), row.leavesRange) << row.text;
        EXPECT_EQ(arithmetic.dividesByZero(), row.dividesByZero) << row.text;
    }
}

TEST(ArithmeticTest, SeesTwoNumbersSideBySide) {
    EXPECT_TRUE(Arithmetic("1 2").hasPair());
    EXPECT_TRUE(Arithmetic("(1) 0x2").hasPair());
    EXPECT_TRUE(Arithmetic("1 (2)").hasPair());
    EXPECT_TRUE(Arithmetic("(1) (2)").hasPair());
    EXPECT_FALSE(Arithmetic("1 - 2").hasPair());
    EXPECT_FALSE(Arithmetic("(1 + 0x20) * 3").hasPair());
}

/// An end address may have 33 bits: that matters where it is the result, or where an operator makes
/// more of it.
TEST(ArithmeticTest, TakesTheAnswersForWhatIsAsked) {
    constexpr std::uint64_t end = std::uint64_t{1} << 32U;
    using Answers = std::vector<Arithmetic::Answer>;
    struct Late {
        const char* text;
        Answers answers;
        std::uint32_t language;
        std::uint32_t usual;
        bool leavesRange;
    };
    for (const Late& row : {
             Late{"endOf(@a1)", {{0x108, 10}}, 0x108, 0x108, false},
             Late{"endOf(@a) - 4-1", {{0x108, 9}}, 0x105, 0x103, false},
             Late{"endOf(@a) - 4", {{end, 9}}, 0xFFFFFFFC, 0xFFFFFFFC, false},
             Late{"endOf(@a)", {{end, 9}}, 0, 0, true},
             Late{"lengthOf(@a) - 8", {{4, 12}}, 0xFFFFFFFC, 0xFFFFFFFC, true},
             Late{"lengthOf(@a) * 2", {{0x80000000, 12}}, 0, 0, true},
             Late{"lengthOf(@a)", {{0xFFFFFFFF, 12}}, 0xFFFFFFFF, 0xFFFFFFFF, false},
             Late{"2*(startOf(@0x1)+sizeOf(a,b(1)))", {{5, 13}, {7, 14}}, 24, 24, false},
         }) {
        const Arithmetic arithmetic(row.text, row.answers);
        EXPECT_EQ(arithmetic.language(), row.language) << row.text;
        EXPECT_EQ(arithmetic.usual(), row.usual) << row.text;
        EXPECT_EQ(arithmetic.leavesRange(), row.leavesRange) << row.text;
        EXPECT_FALSE(arithmetic.hasPair()) << row.text;
    }
}

}  // namespace
