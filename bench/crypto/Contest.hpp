#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

/// One algorithm in several libraries over the same message, each a benchmark of its own.
namespace Contest {

using Bytes = std::span<const std::uint8_t>;
using Value = std::vector<std::uint8_t>;

/// What computes the value of a whole message, and whose code it is.
struct Entrant {
    std::string library;
    std::function<Value(Bytes)> compute;
};

/// Registers "algorithm/library" for each entrant; the first one is this project's. An entrant
/// whose value differs from the first one's is not timed but reported as an error.
void enter(const std::string& algorithm, const std::vector<Entrant>& entrants);

void enterHashes();
void enterCrcs();

}  // namespace Contest
