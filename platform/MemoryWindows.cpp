#include "platform/Memory.hpp"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace Platform {

namespace {

/// Below this size a block comes from the ordinary heap.
constexpr std::size_t largeBlock = std::size_t{1} << 20U;

/// Bytes that this process may still commit. Windows counts pages from the moment when they are
/// committed, touched or not.
std::uint64_t availableMemory() {
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    return ::GlobalMemoryStatusEx(&status) != 0 ? status.ullAvailPageFile : ~std::uint64_t{0};
}

}  // namespace

PageBlock::PageBlock(std::size_t size) {
    if (size == 0) return;
    if (size < largeBlock) {
        data_ = static_cast<std::byte*>(std::calloc(size, 1));
    } else if (size <= availableMemory()) {
        // The pages are zero and take no memory before they are touched.
        data_ = static_cast<std::byte*>(
            ::VirtualAlloc(nullptr, size, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    }
    if (data_ == nullptr) throw std::bad_alloc();
    size_ = size;
}

PageBlock PageBlock::reserve(std::size_t size) {
    size = std::max(size, largeBlock);
    PageBlock block;
    block.data_ =
        static_cast<std::byte*>(::VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_READWRITE));
    if (block.data_ == nullptr) throw std::bad_alloc();
    block.size_ = size;
    return block;
}

void PageBlock::take(std::size_t offset, std::size_t size) {
    if (size > availableMemory() ||
        ::VirtualAlloc(data_ + offset, size, MEM_COMMIT, PAGE_READWRITE) == nullptr)
        throw std::bad_alloc();
}

PageBlock::~PageBlock() {
    if (size_ < largeBlock)
        std::free(data_);
    else
        ::VirtualFree(data_, 0, MEM_RELEASE);
}

}  // namespace Platform
