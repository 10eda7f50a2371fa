#include "platform/Limits.hpp"

#include <sys/resource.h>

#include <algorithm>

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

std::uint64_t usableSteps() {
    return 50'000'000;
}

}  // namespace Platform
