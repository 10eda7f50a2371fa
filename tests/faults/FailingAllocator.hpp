#pragma once

#include <cstddef>

/// The allocations of this test program, made to fail.
namespace Tests {

/// The next `succeeding` allocations go through; the one after them fails, and if `isLasting`, so
/// do all that follow, until `stopFailing`.
void failAfter(std::size_t succeeding, bool isLasting);

/// True if any allocation has failed.
bool stopFailing();

}  // namespace Tests
