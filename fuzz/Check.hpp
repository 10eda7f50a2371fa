#pragma once

#include <cstdio>
#include <cstdlib>

namespace Fuzz {

/// Aborts if `claim` is false, which the fuzzer records as a finding.
inline void check(bool claim, const char* text) {
    if (claim) return;
    std::fprintf(stderr, "Violated: %s\n", text);
    std::abort();
}

}  // namespace Fuzz
