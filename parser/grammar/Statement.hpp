#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "buffer/Area.hpp"
#include "parser/commands/CmdApi.hpp"
#include "parser/commands/LateNumber.hpp"
#include "parser/grammar/Role.hpp"

namespace Parser {

/// A number as the language evaluates it, and the expression that it is.
struct Number {
    std::uint32_t fixed;  ///< its value unless it asks for one
    std::string_view text;
    const WrapperLib::LateNumber* late = nullptr;  ///< null unless it asks for its value

    /// 0 while it is not known.
    std::uint32_t value() const { return late == nullptr ? fixed : late->value(); }
};

/// A part of a statement. Its texts lie in the text that was parsed.
struct Part {
    Role role;
    /// What distinguishes the parts of one role: the value of an option, a file's kind.
    std::uint32_t choice;
    std::string_view text;      ///< without white space at its end; empty if it has no characters
    std::uint32_t firstNumber;  ///< of those of the statement
    std::uint32_t numberCount;
};

/// Those of some parts that have a role, for a loop over them.
class PartsOfRole {
public:
    PartsOfRole(std::span<const Part> parts, Role role) : parts_(parts), role_(role) {}

    class Iterator {
    public:
        Iterator(const Part* part, const Part* end, Role role)
            : part_(part), end_(end), role_(role) {
            skip();
        }
        const Part& operator*() const { return *part_; }
        Iterator& operator++() {
            ++part_;
            skip();
            return *this;
        }
        bool operator==(const Iterator& other) const { return part_ == other.part_; }

    private:
        void skip() {
            while (part_ != end_ && part_->role != role_) ++part_;
        }
        const Part* part_;
        const Part* end_;
        Role role_;
    };

    Iterator begin() const { return {parts_.data(), parts_.data() + parts_.size(), role_}; }
    Iterator end() const {
        const Part* const end = parts_.data() + parts_.size();
        return {end, end, role_};
    }

private:
    std::span<const Part> parts_;
    Role role_;
};

/// A statement as it was parsed: what it says, and where. Its parts belong to a `StatementList`.
struct Statement {
    WrapperLib::CmdType kind = {};
    std::string_view text;  ///< all of it, with the white space at its end
    std::span<const Part> parts;
    std::span<const Number> numbers;
    Roles roles;  ///< those of `parts`

    std::span<const Number> numbersOf(const Part& part) const {
        return numbers.subspan(part.firstNumber, part.numberCount);
    }

    /// The parts of a role, in the order of the text.
    PartsOfRole all(Role role) const { return {parts, role}; }

    /// The last part with one of the roles, the one that counts; null if there is none.
    const Part* last(Roles wanted) const {
        if (!roles.hasAny(wanted)) return nullptr;
        return &*std::find_if(parts.rbegin(), parts.rend(),
                              [wanted](const Part& part) { return wanted.has(part.role); });
    }
    const Part* last(Role role) const { return last(Roles{role}); }
    bool has(Role role) const { return roles.has(role); }

    /// It has numbers that ask images or symbols for their values. Until it is about to run, its
    /// areas and lists say nothing then.
    bool asks() const { return roles.hasAny({Role::MeasuresImage, Role::SymbolFile}); }

    /// It compares an image with bytes instead of changing it.
    bool isComparison() const { return kind == WrapperLib::CmdType::VerifyBuffer; }

    /// The text of the last part of a role; empty if there is none.
    std::string_view textOf(Role role) const {
        const Part* const part = last(role);
        return part == nullptr ? std::string_view() : part->text;
    }

    /// The choice of the last part of a role; `otherwise` if there is none.
    template <class Choice>
    Choice choiceOf(Role role, Choice otherwise) const {
        const Part* const part = last(role);
        return part == nullptr ? otherwise : static_cast<Choice>(part->choice);
    }

    /// The bytes that a list of numbers makes: each is one byte long unless a value size is given.
    std::uint64_t bytesOf(const Part& list) const {
        return std::uint64_t{list.numberCount} * digitOf(Role::ValueSize);
    }

    /// The digit that an option has; 1 without the option.
    std::uint32_t digitOf(Role option) const {
        const std::string_view digit = textOf(option);
        return digit.empty() ? 1 : static_cast<std::uint32_t>(digit.front() - '0');
    }

    /// The area that a part of that role says.
    Buffer::Area areaOf(const Part& part) const {
        const auto values = numbersOf(part).last(2);
        return {values.front().value(), values.back().value()};
    }

    /// The areas of the statement, in their order.
    Buffer::AreaList areas() const {
        Buffer::AreaList list;
        for (const Part& part : all(Role::Area)) list.push_back(areaOf(part));
        return list;
    }
};

/// The statements of a script. All their parts are in one piece of memory, since a script may have
/// a hundred thousand statements of a few parts each.
class StatementList {
public:
    /// Makes room for the statements of a text of `length` characters. Memory that they turn out
    /// not to need is never touched.
    void expect(std::size_t length) {
        constexpr std::size_t charactersOfAPart = 8;
        constexpr std::size_t charactersOfANumber = 8;
        constexpr std::size_t charactersOfAStatement = 32;
        entries_.reserve(length / charactersOfAStatement);
        parts_.reserve(length / charactersOfAPart);
        numbers_.reserve(length / charactersOfANumber);
    }

    std::size_t size() const { return entries_.size(); }
    bool empty() const { return entries_.empty(); }

    /// Valid until the list changes.
    Statement operator[](std::size_t index) const {
        const Entry& entry = entries_[index];
        const bool isLast = index + 1 == entries_.size();
        const std::size_t partsEnd = isLast ? finishedParts_ : entries_[index + 1].firstPart;
        const std::size_t numbersEnd = isLast ? finishedNumbers_ : entries_[index + 1].firstNumber;
        return {entry.kind, entry.text,
                std::span(parts_).subspan(entry.firstPart, partsEnd - entry.firstPart),
                std::span(numbers_).subspan(entry.firstNumber, numbersEnd - entry.firstNumber),
                entry.roles};
    }

    class Iterator {
    public:
        Iterator(const StatementList& list, std::size_t index) : list_(&list), index_(index) {}
        Statement operator*() const { return (*list_)[index_]; }
        Iterator& operator++() {
            ++index_;
            return *this;
        }
        bool operator==(const Iterator& other) const { return index_ == other.index_; }

    private:
        const StatementList* list_;
        std::size_t index_;
    };

    Iterator begin() const { return {*this, 0}; }
    Iterator end() const { return {*this, size()}; }

    /// The parts of the statement that was begun and is not finished.
    std::span<const Part> begun() const { return std::span(parts_).subspan(finishedParts_); }

    /// Begins a statement, and forgets one that is not finished.
    void beginStatement() {
        parts_.erase(parts_.begin() + static_cast<std::ptrdiff_t>(finishedParts_), parts_.end());
        numbers_.erase(numbers_.begin() + static_cast<std::ptrdiff_t>(finishedNumbers_),
                       numbers_.end());
    }

    /// Adds a number, for the part that comes next.
    void add(const Number& number) { numbers_.push_back(number); }

    /// Adds a part, which takes the numbers since the one before it.
    void add(Role role, std::uint32_t choice, std::string_view text) {
        const auto numbers = static_cast<std::uint32_t>(numbers_.size() - finishedNumbers_);
        parts_.push_back({role, choice, text.substr(0, text.find_last_not_of(" \t\n\v\f\r") + 1),
                          takenNumbers(), numbers - takenNumbers()});
    }

    /// Adds a part that a number has, and that takes no numbers itself.
    void addWithin(Role role, std::string_view text) {
        parts_.push_back({role, 0, text, takenNumbers(), 0});
    }

    /// The statement that was begun is finished.
    void endStatement(WrapperLib::CmdType kind, std::string_view text) {
        Roles roles;
        for (const Part& part : begun()) roles.add(part.role);
        entries_.push_back({kind, text, finishedParts_, finishedNumbers_, roles});
        finishedParts_ = parts_.size();
        finishedNumbers_ = numbers_.size();
    }

private:
    struct Entry {
        WrapperLib::CmdType kind;
        std::string_view text;
        std::size_t firstPart;
        std::size_t firstNumber;
        Roles roles;
    };

    /// The numbers of the statement that was begun which its parts have.
    std::uint32_t takenNumbers() const {
        return parts_.size() == finishedParts_
                   ? 0
                   : parts_.back().firstNumber + parts_.back().numberCount;
    }

    std::vector<Entry> entries_;
    std::vector<Part> parts_;
    std::vector<Number> numbers_;
    std::size_t finishedParts_ = 0;
    std::size_t finishedNumbers_ = 0;
};

}  // namespace Parser
