#pragma once

#include <cstdio>
#include <cstdlib>

namespace Fuzz {

/// Ends the process when `claim` does not hold, which is what a fuzzer calls a finding.
inline void check(bool claim, const char* text) {
    if (claim) return;
    std::fprintf(stderr, "This does not hold: %s\n", text);
    std::abort();
}

}  // namespace Fuzz
