#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <ranges>
#include <span>
#include <string_view>
#include <vector>

#include "buffer/Area.hpp"
#include "parser/commands/CmdApi.hpp"
#include "parser/grammar/Role.hpp"

namespace Parser {

/// A number as the language evaluates it, and the expression that it is.
struct Number {
    std::uint32_t value;
    std::string_view text;
};

/// A part of a statement. Its texts lie in the text that was parsed.
struct Part {
    Role role;
    /// What distinguishes the parts of one role: the value of an option, a file's kind.
    std::uint32_t choice;
    std::string_view text;  ///< without white space at its end; empty if it has no characters
    std::size_t firstNumber;
    std::size_t numberCount;
};

/// A statement as it was parsed: what it says, and where.
struct Statement {
    WrapperLib::CmdType kind = {};
    std::string_view text;  ///< all of it, with the white space at its end
    std::vector<Part> parts;
    std::vector<Number> numbers;

    std::span<const Number> numbersOf(const Part& part) const {
        return std::span(numbers).subspan(part.firstNumber, part.numberCount);
    }

    /// The parts of a role, in the order of the text.
    auto all(Role role) const {
        return parts | std::views::filter([role](const Part& part) { return part.role == role; });
    }

    /// The last part with one of the roles, the one that counts; null if there is none.
    const Part* last(std::span<const Role> roles) const {
        const auto found = std::find_if(parts.rbegin(), parts.rend(), [roles](const Part& part) {
            return std::ranges::find(roles, part.role) != roles.end();
        });
        return found == parts.rend() ? nullptr : &*found;
    }
    const Part* last(Role role) const { return last(std::span(&role, 1)); }
    bool has(Role role) const { return last(role) != nullptr; }

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

    /// The area that a part of that role says.
    Buffer::Area areaOf(const Part& part) const {
        const auto values = numbersOf(part).last(2);
        return {values.front().value, values.back().value};
    }

    /// The areas of the statement, in their order.
    Buffer::AreaList areas() const {
        Buffer::AreaList list;
        for (const Part& part : all(Role::Area)) list.push_back(areaOf(part));
        return list;
    }
};

}  // namespace Parser
