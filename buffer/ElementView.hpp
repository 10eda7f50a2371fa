#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "buffer/Blocks.hpp"
#include "buffer/MemoryElement.hpp"
#include "buffer/WrittenBits.hpp"

namespace Buffer {

/// A read-only view of elements that an image owns.
///
/// Values, fillers and flags are three arrays; the array of fillers is null if all of them are 0.
/// An unwritten element has the value 0. Of a sparse image, only blocks that something was written
/// to have memory: `values` and `fillers` must be read there alone, and there they are contiguous.
class ElementView {
public:
    ElementView() = default;

    /// `size` elements; `fillers` may be null, and `blocks` is null unless the image is sparse.
    ElementView(const std::uint8_t* values, const std::uint8_t* fillers,
                const WrittenBits::Word* written, std::size_t size,
                const SparseBlocks* blocks = nullptr)
        : values_(values), fillers_(fillers), written_(written), size_(size), blocks_(blocks) {}

    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }

    /// The elements [`at`, `at + count`), which must exist.
    ElementView part(std::size_t at, std::size_t count) const;

    MemoryElement operator[](std::size_t at) const;

    /// The `count` flags, at most 64, from `at` on; the first one is the lowest bit.
    WrittenBits::Word written(std::size_t at, std::size_t count) const {
        return blocks_ == nullptr ? WrittenBits::read(written_, begin_ + at, count)
                                  : writtenInBlocks(begin_ + at, count);
    }

    /// The first written element from `from` on, or `size()`.
    std::size_t findWritten(std::size_t from) const { return find(from, 0); }

    /// The last written element, or `size()`.
    std::size_t findLastWritten() const;

    /// The first unwritten element from `from` on, or `size()`.
    std::size_t findUnwritten(std::size_t from) const { return find(from, ~WrittenBits::Word{0}); }

    /// An element from `at` on, or `size()`, up to which none is written: the next one whose block
    /// has memory. It is found at once, however far away it is.
    std::size_t skipUnwritten(std::size_t at) const {
        return blocks_ == nullptr ? at : blocks_->values.next(begin_ + at, begin_ + size_) - begin_;
    }

    /// The same up to which all elements are as in a new image.
    std::size_t skipUntouched(std::size_t at) const;

    /// The stretch from `at` on, at most `count` elements, which has memory or has none.
    std::size_t inBlock(std::size_t at, std::size_t count) const {
        return blocks_ == nullptr ? count : Blocks::inBlock(begin_ + at, count);
    }

    /// The values from element `at` on, to the end of its block; null for zeros.
    const std::uint8_t* valuesAt(std::size_t at) const {
        return blocks_ == nullptr || blocks_->values.has(begin_ + at) ? values() + at : nullptr;
    }

    /// The fillers in the same way.
    const std::uint8_t* fillersAt(std::size_t at) const {
        const bool isThere =
            fillers_ != nullptr && (blocks_ == nullptr || blocks_->fillers.has(begin_ + at));
        return isThere ? fillers() + at : nullptr;
    }

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
    WrittenBits::Word writtenInBlocks(std::size_t at, std::size_t count) const;
    void copyStretch(std::size_t at, std::size_t count, std::uint8_t* out) const;

    const std::uint8_t* values_ = nullptr;
    const std::uint8_t* fillers_ = nullptr;
    const WrittenBits::Word* written_ = nullptr;
    std::size_t begin_ = 0;
    std::size_t size_ = 0;
    const SparseBlocks* blocks_ = nullptr;
};

}  // namespace Buffer
