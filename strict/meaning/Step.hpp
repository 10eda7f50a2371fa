#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <span>

#include "parser/commands/CmdContext.hpp"
#include "parser/grammar/Statement.hpp"
#include "strict/meaning/Findings.hpp"
#include "strict/meaning/Images.hpp"
#include "strict/meaning/StoredValues.hpp"
#include "strict/record/Provenance.hpp"

namespace Strict {

/// A statement, and what is known when it is about to run. A rule looks at one and reports what it
/// finds; no rule knows another.
struct Step {
    const Parser::Statement& statement;
    /// The images that the statement reads or changes, by their numbers; unknown ones are left out.
    std::span<const std::size_t> used;
    std::optional<std::size_t> changed;  ///< the image that it changes, if it is known
    /// The value that it puts there or compares the image with, if it is known.
    std::optional<std::size_t> put;
    const Images& images;
    const StoredValues& values;
    Findings& findings;
    /// With the images themselves; null before the run.
    const Parser::WrapperLib::CmdContext* context;
    /// Of the images of `context`; null before the run.
    const Provenance* provenance;

    bool has(Parser::Role role) const { return statement.has(role); }

    /// All images that the statement names are known.
    bool knowsAll() const {
        const auto names = std::ranges::count_if(statement.parts, [](const Parser::Part& part) {
            return part.role == Parser::Role::UsesImage || part.role == Parser::Role::ChangesImage;
        });
        return used.size() == static_cast<std::size_t>(names);
    }
};

}  // namespace Strict
