#include "platform/Memory.hpp"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <new>
#include <string>
#include <string_view>

namespace Platform {

namespace {

/// Below this size a block comes from the ordinary heap and no figures are asked for.
constexpr std::size_t largeBlock = std::size_t{1} << 20U;
/// From this size on the machine is asked whether it can hold the block.
constexpr std::size_t hugeBlock = std::size_t{32} << 20U;
constexpr std::uint64_t unknown = std::numeric_limits<std::uint64_t>::max();

/// The start of a small file of the kernel, as text.
std::string kernelText(const char* path) {
    std::array<char, 4096> text{};
    const int file = ::open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0) return {};
    const ssize_t length = ::read(file, text.data(), text.size());
    ::close(file);
    return {text.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0))};
}

/// The first decimal number after `label`, or `unknown`.
std::uint64_t numberAfter(std::string_view text, std::string_view label) {
    const std::size_t at = text.find(label);
    if (at == std::string_view::npos) return unknown;
    const std::size_t digit = text.find_first_of("0123456789", at + label.size());
    if (digit == std::string_view::npos) return unknown;
    std::uint64_t number = unknown;
    std::from_chars(text.data() + digit, text.data() + text.size(), number);
    return number;
}

/// What the control group of this process may still take.
std::uint64_t groupMemory() {
    const std::uint64_t limit = numberAfter(kernelText("/sys/fs/cgroup/memory.max"), "");
    const std::uint64_t used = numberAfter(kernelText("/sys/fs/cgroup/memory.current"), "");
    if (limit == unknown || used == unknown) return unknown;
    return limit - std::min(limit, used);
}

/// Bytes that blocks may still use. Pages that were reserved but not yet touched are counted as
/// used, for their owners will touch them.
std::uint64_t availableMemory() {
    constexpr std::uint64_t kibi = 1024;
    const std::string machine = kernelText("/proc/meminfo");
    const std::string process = kernelText("/proc/self/status");
    const std::uint64_t available = numberAfter(machine, "MemAvailable:");
    const std::uint64_t reserved = numberAfter(process, "VmData:");
    const std::uint64_t resident = numberAfter(process, "RssAnon:");
    if (available == unknown || reserved == unknown || resident == unknown) return unknown;
    std::uint64_t untouched = reserved - std::min(reserved, resident);
    // More than the machine has was never handed out here: it is the shadow memory of a sanitizer.
    if (untouched > numberAfter(machine, "MemTotal:")) untouched = 0;
    const std::uint64_t free = std::min(available * kibi, groupMemory());
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
