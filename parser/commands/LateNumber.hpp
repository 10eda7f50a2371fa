#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <variant>
#include <vector>

/// Numbers that are known when their statement runs, since they ask images or symbols for
/// something.
namespace Parser::WrapperLib {

struct CmdContext;

/// An operator of the language.
enum class Operator : unsigned char { Add, Subtract, Multiply, Divide, Modulo };

/// The result of an operator, modulo 2^32. A division or modulo by 0 has the left operand for it.
std::uint32_t applied(Operator operation, std::uint64_t left, std::uint64_t right);

/// What a number can ask for.
enum class Property : unsigned char {
    StartAddress,   ///< the first address of an image
    EndAddress,     ///< one past the last address of an image
    Length,         ///< the number of addresses of an image, or of bytes of a signature
    FirstWritten,   ///< the first address of an image that has a byte
    LastWritten,    ///< the last address of an image that has a byte
    SymbolAddress,  ///< of an ELF file
    SymbolSize      ///< of an ELF file, in bytes
};

/// A word of the language that asks for something, as startOf in startOf(@App).
struct NumberFunction {
    const char* keyword;
    Property property;
    const char* meaning;  ///< one line, for people
};

/// All of them: those that take the name of an image, then those that take an ELF file and a
/// symbol.
std::span<const NumberFunction> numberFunctions();
std::span<const NumberFunction> imageFunctions();
std::span<const NumberFunction> symbolFunctions();

/// What a number asks for.
struct Query {
    Property property;
    std::string subject;      ///< the name of an image, or the path of an ELF file
    std::string symbol = {};  ///< of the ELF file
    std::size_t length = 0;   ///< characters that it takes in the script

    /// The answer, which may need more than 32 bits; nothing after a report.
    std::optional<std::uint64_t> answer(CmdContext& context) const;
};

/// An expression over queries. Its value is asked for once, when its statement is about to run.
class LateNumber {
public:
    /// A number, or one of the terms of an expression.
    struct Operand {
        std::uint32_t value = 0;
        std::uint32_t term = 0;  ///< counted from 1; 0 if the operand is a number
    };

    struct Operation {
        Operator sign;
        Operand left;
        Operand right;
    };

    /// An operation has terms in front of it for operands.
    using Term = std::variant<Query, Operation>;

    /// @param result  the number of the term that is the value, counted from 1
    LateNumber(std::vector<Term> terms, std::uint32_t result);

    /// Asks for the value. False after a report.
    bool resolve(CmdContext& context);

    /// Modulo 2^32; 0 while it is not known.
    std::uint32_t value() const { return static_cast<std::uint32_t>(values_[result_]); }

    /// The answers to the queries, in the order of the text, and the characters of each.
    struct Answer {
        std::uint64_t value;
        std::size_t length;
    };
    std::vector<Answer> answers() const;

private:
    std::uint64_t valueOf(const Operand& operand) const;

    std::vector<Term> terms_;
    std::vector<bool> counts_;           ///< the terms that the value depends on
    std::vector<std::uint64_t> values_;  ///< of the terms, 0 while they are not known
    std::size_t result_;                 ///< the term that is the value
};

/// A number of a statement: it is known, or it will be when the statement runs.
struct Amount {
    std::uint64_t number = 0;
    std::shared_ptr<LateNumber> late = {};

    std::uint64_t value() const { return late ? late->value() : number; }
};

/// A list of numbers, of which few are not known yet.
class AmountList {
public:
    void add(const Amount& amount) {
        if (amount.late) late_.emplace_back(numbers_.size(), amount.late);
        numbers_.push_back(static_cast<std::uint32_t>(amount.number));
    }

    /// All of them, once they are known.
    std::vector<std::uint32_t> values() && {
        for (const auto& [index, number] : late_) numbers_[index] = number->value();
        return std::move(numbers_);
    }

    void clear() {
        numbers_.clear();
        late_.clear();
    }

    bool empty() const { return numbers_.empty(); }
    std::size_t size() const { return numbers_.size(); }

    /// The first number.
    Amount front() const {
        const bool isLate = !late_.empty() && late_.front().first == 0;
        return {numbers_.front(), isLate ? late_.front().second : nullptr};
    }

private:
    std::vector<std::uint32_t> numbers_;
    std::vector<std::pair<std::size_t, std::shared_ptr<LateNumber>>> late_;
};

}  // namespace Parser::WrapperLib
