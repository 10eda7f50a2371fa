#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

/// Benchmarks of the same algorithm in several libraries over the same message.
namespace Contest {

using Bytes = std::span<const std::uint8_t>;
using Value = std::vector<std::uint8_t>;

/// A function that computes the value of a whole message, and the library that it belongs to.
struct Entrant {
    std::string library;
    std::function<Value(Bytes)> compute;
};

/// Registers a benchmark "algorithm/library" for each entrant. The first entrant is this project's.
/// An entrant with a different value is not timed but reported as an error.
void enter(const std::string& algorithm, const std::vector<Entrant>& entrants);

void enterHashes();
void enterCrcs();

}  // namespace Contest
