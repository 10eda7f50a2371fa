#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/Platform.hpp"

namespace Buffer {

/// What an image knows of one address.
struct MemoryElement {
    std::uint8_t value = 0;     ///< the byte written here; meaningful while `hasValue` is not 0
    std::uint8_t filler = 0;    ///< the byte this address reads as while nothing was written
    std::uint8_t hasValue = 0;  ///< 1 once a byte was written here

    /// The byte that a reader of the image sees here.
    std::uint8_t effectiveByte() const { return hasValue != 0 ? value : filler; }

    bool operator==(const MemoryElement&) const = default;
};

/// Writes the effective byte of each element to `out`, which has room for `elements.size()` bytes.
void effectiveBytes(std::span<const MemoryElement> elements, std::uint8_t* out);

/// Makes written elements with filler 0 of `bytes`, from the first of `elements` on, of which there
/// are at least as many.
void writtenElements(std::span<const std::uint8_t> bytes, std::span<MemoryElement> elements);

/// The elements of an image: an array of fixed size, all zero at first.
///
/// The pages of a large array are not touched before something is written into them.
class ElementStore {
public:
    ElementStore() = default;

    /// @throws std::length_error for a count that no array can hold
    /// @throws std::bad_alloc when the machine cannot hold it
    explicit ElementStore(std::uint64_t count);
    ~ElementStore() = default;
    ElementStore(const ElementStore& other);
    ElementStore& operator=(const ElementStore& other);
    ElementStore(ElementStore&& other) noexcept;
    ElementStore& operator=(ElementStore&& other) noexcept;

    std::size_t size() const { return size_; }
    std::span<MemoryElement> view() { return {first(), size_}; }
    std::span<const MemoryElement> view() const { return {first(), size_}; }

private:
    MemoryElement* first() const { return reinterpret_cast<MemoryElement*>(pages_.data()); }

    Platform::PageBlock pages_;
    std::size_t size_ = 0;
};

}  // namespace Buffer
