#include "platform/Limits.hpp"

#include <sys/auxv.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdint>
#include <limits>

namespace Platform {

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

}  // namespace Platform
