#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "buffer/ElementView.hpp"
#include "platform/Memory.hpp"

namespace Buffer {

/// The elements of an image: an array of fixed size, all zero at first.
///
/// Two bytes and a bit are reserved for each element. The pages of a large array are not touched
/// before something is written to them, so an array without fillers costs little more than a byte
/// an element, and one of gaps next to nothing. Positions and counts are of elements and must lie
/// in the array.
///
/// The array of a sparse image (ImageSpace) reserves addresses alone, and takes memory for blocks
/// of elements when something is written to them. What an operation needs it takes before it
/// changes anything; it throws std::bad_alloc if the machine has no more.
class ElementStore {
public:
    ElementStore() = default;

    /// @throws std::length_error for a count that no array can hold
    /// @throws std::bad_alloc when the machine cannot hold it
    explicit ElementStore(std::uint64_t count);

    /// `count` written elements with filler 0, whose values are the first bytes of `values`.
    ElementStore(Platform::PageBlock values, std::size_t count);
    ~ElementStore() = default;
    ElementStore(const ElementStore& other);
    ElementStore& operator=(const ElementStore& other);
    ElementStore(ElementStore&& other) noexcept;
    ElementStore& operator=(ElementStore&& other) noexcept;

    std::size_t size() const { return size_; }
    ElementView view() const {
        return {values(), hasFillers_ ? fillers() : nullptr, written(), size_, blocks_.get()};
    }

    /// Makes written elements with filler 0 of `bytes`, from `at` on.
    void write(std::size_t at, std::span<const std::uint8_t> bytes);

    /// Writes `bytes`, which are not empty, again and again over the `count` elements from `at` on.
    /// Their fillers stay.
    void writePattern(std::size_t at, std::span<const std::uint8_t> bytes, std::size_t count);

    /// Sets the fillers of the `count` elements from `at` on to `bytes`, which are not empty, again
    /// and again. Values and flags stay.
    void fillPattern(std::size_t at, std::span<const std::uint8_t> bytes, std::size_t count);

    /// Lets `read` put bytes into the `count` values from `at` on and makes as many written
    /// elements with filler 0 as it returns. `read` must not touch more than those.
    template <class Read>
    void writeWith(std::size_t at, std::size_t count, Read read) {
        takeValues(at, count);
        setWritten(at, read(std::span(values() + at, count)));
    }

    /// Replaces the elements from `at` on.
    void replace(std::size_t at, ElementView elements);

    /// Applies `elements` to those from `at` on: a written one replaces the value and leaves the
    /// filler, another one replaces the filler and leaves the value.
    void apply(std::size_t at, ElementView elements);
    void apply(std::size_t at, const MemoryElement& element);

    /// Makes written elements with filler 0 of the written ones among `elements`, from `at` on. An
    /// element that is unwritten in both takes the other's filler in place of its own if that is 0.
    ///
    /// @param keepsWritten  elements that are written already keep their values
    void merge(std::size_t at, ElementView elements, bool keepsWritten);

private:
    ElementStore(std::uint64_t count, bool isSparse);

    std::uint8_t* values() const { return reinterpret_cast<std::uint8_t*>(values_.data()); }
    std::uint8_t* fillers() const { return reinterpret_cast<std::uint8_t*>(fillers_.data()); }
    WrittenBits::Word* written() const {
        return reinterpret_cast<WrittenBits::Word*>(written_.data());
    }
    bool hasValues(std::size_t at) const { return blocks_ == nullptr || blocks_->values.has(at); }
    bool hasFillers(std::size_t at) const {
        return hasFillers_ && (blocks_ == nullptr || blocks_->fillers.has(at));
    }
    void takeValues(std::size_t at, std::size_t count);
    void takeFillers(std::size_t at, std::size_t count);
    void takeFor(std::size_t at, ElementView elements);
    void setWritten(std::size_t at, std::size_t count);
    void setFlags(std::size_t at, std::size_t count);
    /// The flags, at most 64, from `at` on, in one word.
    WrittenBits::Word flagsAt(std::size_t at, std::size_t count) const {
        return hasValues(at) ? WrittenBits::read(written(), at, count) : 0;
    }
    void clearFillers(std::size_t at, std::size_t count);
    /// A source of fillers may be null, for zeros; flags, at most 64, select elements. All of them
    /// are in one block.
    void setFillers(std::size_t at, const std::uint8_t* source, std::size_t count);
    void replaceValues(std::size_t at, ElementView elements, const std::uint8_t* values);
    void mergeFillers(std::size_t at, const std::uint8_t* source, WrittenBits::Word flags);
    void applyValues(std::size_t at, const std::uint8_t* source, WrittenBits::Word flags,
                     std::size_t count);
    void applyFillers(std::size_t at, const std::uint8_t* source, WrittenBits::Word flags,
                      std::size_t count);

    Platform::PageBlock values_;
    Platform::PageBlock fillers_;
    Platform::PageBlock written_;
    std::size_t size_ = 0;
    std::unique_ptr<SparseBlocks> blocks_;  ///< null unless the image is sparse
    /// A filler other than 0 may have been set. Until then no filler is read.
    bool hasFillers_ = false;
};

}  // namespace Buffer
