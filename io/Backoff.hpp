#pragma once

#include <algorithm>
#include <cstdint>

namespace Io {

/// Spaces attempts that keep failing: after each failure in a row, twice as many chances pass until
/// the next attempt is due, at most 64.
class Backoff {
public:
    /// Called at every chance.
    bool isDue() {
        if (rest_ == 0) return true;
        --rest_;
        return false;
    }

    /// Notes what came of an attempt.
    void note(bool hasSucceeded) {
        constexpr std::uint32_t longest = 64;
        wait_ = hasSucceeded ? 0 : std::clamp(2 * wait_, 1U, longest);
        rest_ = wait_;
    }

private:
    std::uint32_t wait_ = 0;
    std::uint32_t rest_ = 0;
};

}  // namespace Io
