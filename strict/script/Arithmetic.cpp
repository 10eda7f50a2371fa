#include "strict/script/Arithmetic.hpp"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <vector>

namespace Strict {

namespace {

using namespace Parser::WrapperLib;

/// A number, an operator or a parenthesis.
struct Token {
    char kind;  ///< '0' for a number
    std::uint64_t value = 0;
};

/// What asks for something begins with a letter that begins no number.
bool isQuery(std::string_view text) {
    return std::ranges::any_of(numberFunctions(), [text](const NumberFunction& function) {
        return text.starts_with(function.keyword);
    });
}

std::vector<Token> tokensOf(std::string_view text, std::span<const LateNumber::Answer> answers) {
    std::vector<Token> tokens;
    auto answer = answers.begin();
    while (!text.empty()) {
        const char first = text.front();
        if (answer != answers.end() && isQuery(text)) {
            tokens.push_back({'0', answer->value});
            text.remove_prefix(answer->length);
            ++answer;
            continue;
        }
        const bool isDigit = (first >= '0' && first <= '9') || first == 'x' || first == 'X';
        if (!isDigit) {
            if (std::string_view("+-*/%()").find(first) != std::string_view::npos)
                tokens.push_back({first});
            text.remove_prefix(1);
            continue;
        }
        const std::size_t mark = text.find_first_not_of('0');
        const bool isHex =
            mark != std::string_view::npos && (text[mark] == 'x' || text[mark] == 'X');
        if (isHex) text.remove_prefix(mark + 1);
        Token token{'0'};
        const auto end =
            std::from_chars(text.data(), text.data() + text.size(), token.value, isHex ? 16 : 10);
        const auto length = static_cast<std::size_t>(end.ptr - text.data());
        text.remove_prefix(length == 0 ? 1 : length);
        tokens.push_back(token);
    }
    return tokens;
}

constexpr std::uint64_t highest = 0xFFFFFFFF;

/// The result of the operator is above 0xFFFFFFFF or below 0.
bool exceeds(char sign, std::uint64_t left, std::uint64_t right) {
    if (sign == '+') return left + right > highest;
    if (sign == '-') return left < right;
    return sign == '*' && left * right > highest;
}

Operator operatorOf(char sign) {
    switch (sign) {
        case '+':
            return Operator::Add;
        case '-':
            return Operator::Subtract;
        case '*':
            return Operator::Multiply;
        case '/':
            return Operator::Divide;
        default:
            return Operator::Modulo;
    }
}

bool isProduct(char sign) {
    return sign == '*' || sign == '/' || sign == '%';
}

/// Evaluates a token list. The grammar bounds the depth of parentheses.
class Evaluation {
public:
    Evaluation(const std::vector<Token>& tokens, bool isUsual)
        : tokens_(&tokens), isUsual_(isUsual) {}

    std::uint64_t value() { return isUsual_ ? sum() : chain(); }

    bool leavesRange() const { return leavesRange_; }
    bool dividesByZero() const { return dividesByZero_; }

private:
    char kind() const { return at_ < tokens_->size() ? (*tokens_)[at_].kind : '\0'; }

    std::uint64_t operand() {
        if (kind() == '(') {
            ++at_;
            const std::uint64_t inner = value();
            if (kind() == ')') ++at_;
            return inner;
        }
        return at_ < tokens_->size() ? (*tokens_)[at_++].value : 0;
    }

    std::uint64_t product() {
        std::uint64_t left = operand();
        while (isProduct(kind())) {
            const char sign = (*tokens_)[at_++].kind;
            left = applied(operatorOf(sign), left, operand());
        }
        return left;
    }

    std::uint64_t sum() {
        std::uint64_t left = product();
        while (kind() == '+' || kind() == '-') {
            const char sign = (*tokens_)[at_++].kind;
            left = applied(operatorOf(sign), left, product());
        }
        return left;
    }

    /// Each operator takes the rest.
    std::uint64_t chain() {
        std::vector<std::uint64_t> operands{operand()};
        std::vector<char> signs;
        while (kind() == '+' || kind() == '-' || isProduct(kind())) {
            signs.push_back((*tokens_)[at_++].kind);
            operands.push_back(operand());
        }
        std::uint64_t right = operands.back();
        for (std::size_t i = signs.size(); i-- > 0;) {
            leavesRange_ = leavesRange_ || exceeds(signs[i], operands[i], right);
            dividesByZero_ = dividesByZero_ || ((signs[i] == '/' || signs[i] == '%') && right == 0);
            right = applied(operatorOf(signs[i]), operands[i], right);
        }
        return right;
    }

    const std::vector<Token>* tokens_;
    bool isUsual_;
    std::size_t at_ = 0;
    bool leavesRange_ = false;
    bool dividesByZero_ = false;
};

}  // namespace

Arithmetic::Arithmetic(std::string_view text, std::span<const Answer> answers) {
    const std::vector<Token> tokens = tokensOf(text, answers);
    for (std::size_t i = 1; i < tokens.size(); ++i) {
        const char before = tokens[i - 1].kind;
        const char now = tokens[i].kind;
        hasPair_ = hasPair_ || ((before == '0' || before == ')') && (now == '0' || now == '('));
    }
    Evaluation evaluation(tokens, false);
    const std::uint64_t value = evaluation.value();
    language_ = static_cast<std::uint32_t>(value);
    // An image may end at 2^32.
    leavesRange_ = evaluation.leavesRange() || value > highest;
    dividesByZero_ = evaluation.dividesByZero();
    usual_ = static_cast<std::uint32_t>(Evaluation(tokens, true).value());
}

}  // namespace Strict
