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

/// Larger than the large pages of the machine.
constexpr std::size_t longStretch = std::size_t{4} << 20U;

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

std::byte* mapped(std::size_t size, int protection, int flags) {
    void* const pages =
        ::mmap(nullptr, size, protection, MAP_PRIVATE | MAP_ANONYMOUS | flags, -1, 0);
    if (pages == MAP_FAILED) throw std::bad_alloc();
    return static_cast<std::byte*>(pages);
}

}  // namespace

PageBlock::PageBlock(std::size_t size) {
    if (size == 0) return;
    if (size < largeBlock) {
        data_ = static_cast<std::byte*>(std::calloc(size, 1));
        if (data_ == nullptr) throw std::bad_alloc();
    } else {
        if (size >= hugeBlock && size > availableMemory()) throw std::bad_alloc();
        data_ = mapped(size, PROT_READ | PROT_WRITE, 0);
        // A page fault for every two megabytes instead of every four kilobytes. Only advice.
        ::madvise(data_, size, MADV_HUGEPAGE);
    }
    size_ = size;
}

/// Pages that cannot be written count neither for the limits of the machine nor as data of this
/// process.
PageBlock PageBlock::reserve(std::size_t size) {
    size = std::max(size, largeBlock);
    PageBlock block;
    block.data_ = mapped(size, PROT_READ, MAP_NORESERVE);
    block.size_ = size;
    return block;
}

void PageBlock::take(std::size_t offset, std::size_t size) {
    if (size >= hugeBlock && size > availableMemory()) throw std::bad_alloc();
    if (::mprotect(data_ + offset, size, PROT_READ | PROT_WRITE) != 0) throw std::bad_alloc();
    if (size >= longStretch) ::madvise(data_ + offset, size, MADV_HUGEPAGE);
}

PageBlock::~PageBlock() {
    if (size_ < largeBlock)
        std::free(data_);
    else
        ::munmap(data_, size_);
}

}  // namespace Platform
