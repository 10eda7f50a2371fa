#include "tests/faults/FailingAllocator.hpp"

#include <cstdlib>
#include <limits>
#include <new>

namespace {

// A replaced operator new has no other place to look at.
constexpr std::size_t never = std::numeric_limits<std::size_t>::max();
std::size_t left = never;
bool isLastingFault = false;
bool hasFailed = false;

bool isDue() {
    if (left == never) return false;
    if (left != 0) {
        --left;
        return false;
    }
    hasFailed = true;
    if (!isLastingFault) left = never;
    return true;
}

}  // namespace

namespace Tests {

void failAfter(std::size_t succeeding, bool isLasting) {
    isLastingFault = isLasting;
    hasFailed = false;
    left = succeeding;
}

bool stopFailing() {
    left = never;
    return hasFailed;
}

}  // namespace Tests

void* operator new(std::size_t size) {
    void* const memory = isDue() ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return isDue() ? nullptr : std::malloc(size == 0 ? 1 : size);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}
