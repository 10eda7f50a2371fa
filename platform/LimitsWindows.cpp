#include "platform/Limits.hpp"

#include <windows.h>

#include <algorithm>

namespace Platform {

std::size_t usableStackBytes() {
    constexpr std::size_t usual = std::size_t{8} << 20U;
    ULONG_PTR low = 0;
    ULONG_PTR high = 0;
    ::GetCurrentThreadStackLimits(&low, &high);
    return std::min<std::size_t>(usual, high - low) / 2;
}

std::size_t freeStackBytes() {
    // The linker sets its size, and nobody else does.
    return usableStackBytes();
}

std::uint64_t usableSteps() {
    return 50'000'000;
}

}  // namespace Platform
