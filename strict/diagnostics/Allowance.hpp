#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "strict/diagnostics/Diagnostic.hpp"

namespace Strict {

/// Bounds how many diagnostics are shown, and counts the others: the first ones of a kind say all
/// that a person can use, and a damaged file has millions.
class Allowance {
public:
    using Counts = std::map<std::optional<Kind>, std::uint64_t>;

    /// Diagnostics of each kind that are shown, and one after them if it sums up the rest of a file
    /// that has so many. A note that has no place, since it is about the run, always is.
    static constexpr std::size_t perKind = 20;

    /// True if the diagnostic is shown; counts it if not.
    bool admits(const Diagnostic& diagnostic);

    /// Counts more of a kind, which are not shown.
    void countMore(Kind kind, std::uint64_t count) { rest_[kind] += count; }

    /// How many of which kind, or notes, are shown, in the order of the kinds.
    const Counts& shown() const { return shown_; }

    /// How many of which kind, or notes, were not shown, in the order of the kinds.
    const Counts& rest() const { return rest_; }

    /// The same in words, "not shown: 3 more of conflict, 1,980 more of overlap", or nothing.
    std::string restText() const;

private:
    Counts shown_;
    Counts rest_;
};

}  // namespace Strict
