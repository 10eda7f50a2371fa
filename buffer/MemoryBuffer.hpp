#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "buffer/Area.hpp"
#include "buffer/ElementStore.hpp"
#include "buffer/ImageSpace.hpp"

namespace Buffer {

enum class ByteOrder : std::uint32_t { NotSet = 0, LittleEndian = 1, BigEndian = 2 };

/// One contiguous address range of a flash image, one element per address.
///
/// An element has a value, which is the byte that was written to the address, a filler, which the
/// address reads as while nothing was written, and a flag that selects one of them. Values, fillers
/// and flags are kept as three arrays (ElementStore), of which those of a sparse image (ImageSpace)
/// have memory only where something was written. The operations that place bytes differ in
/// what they do to an element and in what they do with a range that leaves the image:
///
/// | operation | value and flag | filler | range outside the image |
/// | --- | --- | --- | --- |
/// | `writePattern` | written | stays | refused as a whole |
/// | `fillPattern` | stay | set | refused as a whole |
/// | `fillMemory`, `fillFrom` | as `writePattern` or `fillPattern`, by each source element | |
/// refused as a whole | | `overlay` | replaced by the source's | replaced | left out | |
/// `overlayBytes` | written | 0 | left out | | `overlayRead` | written | 0 | not allowed |
///
/// Addresses and lengths are in bytes. No operation throws for bad arguments: a refused one reports
/// a fact (facts/Facts.hpp), changes nothing and returns an empty image. Only std::bad_alloc and
/// std::length_error are thrown. Moving an image costs nothing, copying it copies every element.
class MemoryBuffer {
public:
    /// `dataLength` default elements at `startAddress`. A range that passes the end of the 64-bit
    /// address space, or one of `ImageSpace::lengthEnd` and more, is reported and leaves an empty
    /// image with that start address. The memory is reserved before either check.
    MemoryBuffer(std::uint64_t startAddress, std::uint64_t dataLength);

    /// An image of `length` written elements with filler 0, whose values are the first bytes of
    /// `bytes`. The range is one that the other constructor takes.
    MemoryBuffer(std::uint64_t start, Platform::PageBlock bytes, std::size_t length)
        : startAddress_(start), elements_(std::move(bytes), length) {}
    virtual ~MemoryBuffer() = default;
    MemoryBuffer(const MemoryBuffer&) = default;
    MemoryBuffer& operator=(const MemoryBuffer&) = default;
    MemoryBuffer(MemoryBuffer&&) noexcept = default;
    MemoryBuffer& operator=(MemoryBuffer&&) noexcept = default;

    std::uint64_t getStartAddress() const { return startAddress_; }
    std::uint64_t getDataLength() const { return elements_.size(); }
    Area getArea() const { return {startAddress_, elements_.size()}; }

    /// A copy of all elements, in address order.
    std::vector<MemoryElement> getElements() const;

    /// The elements themselves, in address order, while the image lives and is not written to.
    ElementView viewElements() const { return elements_.view(); }

    /// The elements of a range, or none if any part of it lies outside the image; nothing is said.
    ElementView viewRange(std::uint64_t start, std::uint64_t dataLength) const;

    /// A tag that the image itself never looks at; `BigEndian` in a new one.
    ByteOrder getByteOrder() const { return byteOrder_; }
    void setByteOrder(ByteOrder order) { byteOrder_ = order; }

    /// Moves the image: the elements stay, the address of the first one changes. Refused if the
    /// range would pass the end of the address space.
    void setStartingAddress(std::uint64_t newStartAddress);

    /// Writes `dataPattern` cyclically over `numberOfElements` addresses from `start` on,
    /// restarting it at `start`.
    ///
    /// A written element replaces the byte and leaves the filler; another one replaces the filler
    /// and leaves the byte. Refused as a whole if the pattern is empty or the range leaves the
    /// image; the address one past the last element is still a valid `start` for no elements.
    void fillMemory(std::span<const MemoryElement> dataPattern, std::uint64_t start,
                    std::uint64_t numberOfElements);

    /// `fillMemory` with a pattern of written elements.
    void writePattern(std::span<const std::uint8_t> bytes, std::uint64_t start,
                      std::uint64_t numberOfBytes);

    /// `fillMemory` with a pattern of fillers.
    void fillPattern(std::span<const std::uint8_t> bytes, std::uint64_t start,
                     std::uint64_t numberOfBytes);

    /// `fillMemory` with elements of another image, once.
    void fillFrom(ElementView pattern, std::uint64_t start);

    /// Overlays `bytes`, as written elements with filler 0, from `start` on. What lies outside the
    /// image is left out, without a message.
    void overlayBytes(std::span<const std::uint8_t> bytes, std::uint64_t start);

    /// Overlays what `read` puts into the `length` bytes that it is given: as many of them as it
    /// returns, as written elements with filler 0, from `start` on. It touches no more of them. The
    /// range lies in the image.
    template <class Read>
    void overlayRead(std::uint64_t start, std::uint64_t length, Read read) {
        elements_.writeWith(start - startAddress_, length, read);
    }

    /// A new image of the range, with the byte order tag of a new image. A written element arrives
    /// with filler 0, an unwritten one with value 0. Refused as a whole, with an empty image at
    /// address 0, if the range leaves this image.
    MemoryBuffer extractMemory(std::uint64_t start, std::uint64_t dataLength) const;

    /// Copies the elements of `other`, written or not, to the same addresses of this image as far
    /// as both have them. Nothing is reported.
    void overlay(const MemoryBuffer& other);

    /// Copies the written elements of `other` to the same addresses of this image as far as it has
    /// them, with filler 0. Where this image is not written it takes a filler of `other` other than
    /// 0 in place of one that is 0. Nothing is reported.
    ///
    /// @param keepsWritten  elements that are written already keep their bytes
    void merge(const MemoryBuffer& other, bool keepsWritten);

    /// Appends the effective bytes of the range to `output`, in address order. Appends nothing and
    /// says nothing if any part of the range lies outside the image.
    void appendBytes(std::vector<std::uint8_t>& output, std::uint64_t start,
                     std::uint64_t dataLength) const;

private:
    bool isFillable(std::size_t patternSize, std::uint64_t start,
                    std::uint64_t numberOfElements) const;
    std::optional<Area> overlap(const Area& area) const;

    std::uint64_t startAddress_;
    ElementStore elements_;
    ByteOrder byteOrder_ = ByteOrder::BigEndian;
};

}  // namespace Buffer
