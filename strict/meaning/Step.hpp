#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "parser/commands/CmdContext.hpp"
#include "parser/grammar/Statement.hpp"
#include "strict/meaning/Findings.hpp"
#include "strict/meaning/Images.hpp"
#include "strict/meaning/StoredValues.hpp"
#include "strict/record/Provenance.hpp"

namespace Strict {

/// The roles of a statement's parts, a bit each: rules ask for them far more often than they find
/// what they look for.
class Roles {
public:
    explicit Roles(const Parser::Statement& statement) {
        for (const Parser::Part& part : statement.parts) bits_ |= bitOf(part.role);
    }

    bool has(Parser::Role role) const { return (bits_ & bitOf(role)) != 0; }

private:
    static_assert(static_cast<unsigned>(Parser::Role::None) < 32, "a bit for each role");
    static constexpr std::uint32_t bitOf(Parser::Role role) {
        return std::uint32_t{1} << static_cast<unsigned>(role);
    }

    std::uint32_t bits_ = 0;
};

/// A statement, and what is known when it is about to run. A rule looks at one and reports what it
/// finds; no rule knows another.
struct Step {
    const Parser::Statement& statement;
    Roles roles;
    /// The images that the statement reads or changes, by their numbers; unknown ones are left out.
    std::span<const std::size_t> used;
    const Images& images;
    const StoredValues& values;
    Findings& findings;
    /// With the images themselves; null before the run.
    const Parser::WrapperLib::CmdContext* context;
    /// Of the images of `context`; null before the run.
    const Provenance* provenance;

    bool has(Parser::Role role) const { return roles.has(role); }

    /// All images that the statement names are known.
    bool knowsAll() const {
        const auto names = std::ranges::count_if(statement.parts, [](const Parser::Part& part) {
            return part.role == Parser::Role::UsesImage || part.role == Parser::Role::ChangesImage;
        });
        return used.size() == static_cast<std::size_t>(names);
    }
};

}  // namespace Strict
