#include "platform/Limits.hpp"

#include <windows.h>

namespace Platform {

std::size_t freeStackBytes() {
    // The linker sets the size of the stack, and nobody else does.
    ULONG_PTR low = 0;
    ULONG_PTR high = 0;
    ::GetCurrentThreadStackLimits(&low, &high);
    return (high - low) / 2;
}

}  // namespace Platform
