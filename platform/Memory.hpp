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

    /// Reserves the addresses of `size` bytes, or of a megabyte if that is more. None of them may
    /// be used before `take` has got memory for it.
    ///
    /// @throws std::bad_alloc  if the system refuses
    static PageBlock reserve(std::size_t size);

    /// Gets memory for `size` bytes from `offset` on of a block that `reserve` has made. Both are
    /// multiples of `reservedUnit`. Bytes that have memory already stay.
    ///
    /// @throws std::bad_alloc  if the system refuses, or if the machine has less memory left
    void take(std::size_t offset, std::size_t size);

    /// The largest page of a machine that this runs on.
    static constexpr std::size_t reservedUnit = std::size_t{1} << 16U;

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
