#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "buffer/MemoryElement.hpp"
#include "buffer/WrittenBits.hpp"

namespace Buffer {

/// A read-only view of elements that an image owns.
///
/// Values, fillers and flags are three arrays; the array of fillers is null if all of them are 0.
/// An unwritten element has the value 0.
class ElementView {
public:
    ElementView() = default;

    /// `size` elements; `fillers` may be null.
    ElementView(const std::uint8_t* values, const std::uint8_t* fillers,
                const WrittenBits::Word* written, std::size_t size)
        : values_(values), fillers_(fillers), written_(written), size_(size) {}

    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }

    /// The elements [`at`, `at + count`), which must exist.
    ElementView part(std::size_t at, std::size_t count) const;

    MemoryElement operator[](std::size_t at) const;

    /// The `count` flags, at most 64, from `at` on; the first one is the lowest bit.
    WrittenBits::Word written(std::size_t at, std::size_t count) const {
        return WrittenBits::read(written_, begin_ + at, count);
    }

    /// The first written element from `from` on, or `size()`.
    std::size_t findWritten(std::size_t from) const { return find(from, 0); }

    /// The first unwritten element from `from` on, or `size()`.
    std::size_t findUnwritten(std::size_t from) const { return find(from, ~WrittenBits::Word{0}); }

    const std::uint8_t* values() const { return values_ + begin_; }

    /// Null when all fillers are 0.
    const std::uint8_t* fillers() const {
        return fillers_ == nullptr ? nullptr : fillers_ + begin_;
    }

    /// The effective bytes in place, if they are contiguous.
    std::optional<std::span<const std::uint8_t>> bytes() const;

    /// Writes the effective byte of each element to `out`, which has room for `size()` bytes.
    void copyBytes(std::uint8_t* out) const;

private:
    std::size_t find(std::size_t from, WrittenBits::Word passed) const;

    const std::uint8_t* values_ = nullptr;
    const std::uint8_t* fillers_ = nullptr;
    const WrittenBits::Word* written_ = nullptr;
    std::size_t begin_ = 0;
    std::size_t size_ = 0;
};

}  // namespace Buffer
