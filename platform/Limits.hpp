#pragma once

#include <cstddef>
#include <cstdint>

/// What this machine lets a computation use up.
namespace Platform {

/// Bytes of stack that are left. To be called in the thread that runs `main`.
std::size_t freeStackBytes();

/// Steps of a few nanoseconds, such as a copy or a comparison, that a search of unpredictable
/// length may take before it counts as hung.
std::uint64_t usableSteps();

}  // namespace Platform
