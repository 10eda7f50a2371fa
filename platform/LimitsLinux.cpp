#include "platform/Limits.hpp"

#include <sys/auxv.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdint>
#include <limits>

namespace Platform {

std::size_t usableStackBytes() {
    constexpr std::size_t usual = std::size_t{8} << 20U;
    rlimit limit{};
    const bool isLimited =
        ::getrlimit(RLIMIT_STACK, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY;
    const std::size_t total =
        isLimited ? std::min<std::size_t>(usual, static_cast<std::size_t>(limit.rlim_cur)) : usual;
    return total / 2;
}

std::size_t freeStackBytes() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_STACK, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
        return std::numeric_limits<std::size_t>::max();
    // The path of the program is the first that the kernel puts there; arguments and environment
    // follow and count.
    const auto top = static_cast<std::uintptr_t>(::getauxval(AT_EXECFN));
    const char here = 0;
    const std::uintptr_t used = top - std::min(top, reinterpret_cast<std::uintptr_t>(&here));
    return limit.rlim_cur - std::min<std::size_t>(limit.rlim_cur, used);
}

std::uint64_t usableSteps() {
    return 50'000'000;
}

}  // namespace Platform
