#pragma once

#include <cstddef>

/// Memory from the operating system.
namespace Platform {

/// Anonymous memory that reads as zero and is not touched before its first use.
class PageBlock {
public:
    PageBlock() = default;

    /// Reserves `size` bytes.
    ///
    /// @throws std::bad_alloc  if the system refuses, or if the machine (or the control group of
    ///         this process) has less memory left: the pages are handed out one by one later, when
    ///         nothing can be refused any more
    explicit PageBlock(std::size_t size);
    ~PageBlock();
    PageBlock(PageBlock&& other) noexcept;
    PageBlock& operator=(PageBlock&& other) noexcept;
    PageBlock(const PageBlock&) = delete;
    PageBlock& operator=(const PageBlock&) = delete;

    std::byte* data() const { return data_; }
    std::size_t size() const { return size_; }

private:
    std::byte* data_ = nullptr;
    std::size_t size_ = 0;
};

}  // namespace Platform
