#include "platform/Memory.hpp"

#include <utility>

namespace Platform {

PageBlock::PageBlock(PageBlock&& other) noexcept
    : data_(std::exchange(other.data_, nullptr)), size_(std::exchange(other.size_, 0)) {}

PageBlock& PageBlock::operator=(PageBlock&& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(size_, other.size_);
    return *this;
}

}  // namespace Platform
