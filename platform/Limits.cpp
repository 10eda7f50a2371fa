#include "platform/Limits.hpp"

namespace Platform {

std::uint64_t usableSteps() {
    return 50'000'000;
}

}  // namespace Platform
