#include "platform/Memory.hpp"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <string>

#include "platform/ControlGroup.hpp"
#include "platform/KernelText.hpp"

namespace Platform {

namespace {

/// Below this size a block comes from the ordinary heap and no figures are asked for.
constexpr std::size_t largeBlock = std::size_t{1} << 20U;
/// From this size on the machine is asked whether it can hold the block.
constexpr std::size_t hugeBlock = std::size_t{32} << 20U;

/// Bytes that blocks may still use. Pages that were reserved but not yet touched are counted as
/// used, for their owners will touch them.
std::uint64_t availableMemory() {
    constexpr std::uint64_t kibi = 1024;
    const std::string machine = kernelText("/proc/meminfo");
    const std::string process = kernelText("/proc/self/status");
    const std::uint64_t available = numberAfter(machine, "MemAvailable:");
    const std::uint64_t reserved = numberAfter(process, "VmData:");
    const std::uint64_t resident = numberAfter(process, "RssAnon:");
    if (available == unknownNumber || reserved == unknownNumber || resident == unknownNumber)
        return unknownNumber;
    std::uint64_t untouched = reserved - std::min(reserved, resident);
    // More than the machine has was never handed out here: it is the shadow memory of a sanitizer.
    if (untouched > numberAfter(machine, "MemTotal:")) untouched = 0;
    const std::uint64_t free = std::min(
        available * kibi, freeGroupMemory(kernelText("/proc/self/cgroup"), "/sys/fs/cgroup"));
    return free - std::min(free, untouched * kibi);
}

}  // namespace

PageBlock::PageBlock(std::size_t size) {
    if (size == 0) return;
    if (size < largeBlock) {
        data_ = static_cast<std::byte*>(std::calloc(size, 1));
        if (data_ == nullptr) throw std::bad_alloc();
    } else {
        if (size >= hugeBlock && size > availableMemory()) throw std::bad_alloc();
        void* const pages =
            ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (pages == MAP_FAILED) throw std::bad_alloc();
        // A page fault for every two megabytes instead of every four kilobytes. Only advice.
        ::madvise(pages, size, MADV_HUGEPAGE);
        data_ = static_cast<std::byte*>(pages);
    }
    size_ = size;
}

PageBlock::~PageBlock() {
    if (size_ < largeBlock)
        std::free(data_);
    else
        ::munmap(data_, size_);
}

}  // namespace Platform
