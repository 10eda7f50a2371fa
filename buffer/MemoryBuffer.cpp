#include "buffer/MemoryBuffer.hpp"

#include <algorithm>

#include "facts/Listener.hpp"

namespace Buffer {

MemoryBuffer::MemoryBuffer(std::uint64_t start, std::uint64_t dataLength) : startAddress_(start) {
    ElementStore reserved(dataLength);
    if (dataLength > ~start) {
        Facts::report(Facts::ImageNotAddressable{start, dataLength});
        return;
    }
    if (dataLength >= imageSpace().lengthEnd) {
        Facts::report(Facts::ImageTooLong{dataLength, imageSpace().lengthEnd});
        return;
    }
    elements_ = std::move(reserved);
}

std::vector<MemoryElement> MemoryBuffer::getElements() const {
    const ElementView all = viewElements();
    std::vector<MemoryElement> copy(all.size());
    for (std::size_t i = 0; i < copy.size(); ++i) copy[i] = all[i];
    return copy;
}

ElementView MemoryBuffer::viewRange(std::uint64_t start, std::uint64_t dataLength) const {
    if (!getArea().contains({start, dataLength})) return {};
    return viewElements().part(start - startAddress_, dataLength);
}

void MemoryBuffer::setStartingAddress(std::uint64_t newStartAddress) {
    const std::uint64_t highest = ~getDataLength();
    if (newStartAddress > highest)
        Facts::report(Facts::MoveTooFar{newStartAddress, highest});
    else
        startAddress_ = newStartAddress;
}

/// Reports it if not.
bool MemoryBuffer::isFillable(std::size_t patternSize, std::uint64_t start,
                              std::uint64_t numberOfElements) const {
    const std::uint64_t end = getArea().end();
    if (patternSize == 0)
        Facts::report(Facts::FillPatternEmpty{});
    else if (start < startAddress_ || start > end)
        Facts::report(Facts::FillStartOutside{start, startAddress_, end});
    else if (numberOfElements > end - start)
        Facts::report(Facts::FillTooLong{start, numberOfElements, end});
    else
        return true;
    return false;
}

void MemoryBuffer::fillMemory(std::span<const MemoryElement> dataPattern, std::uint64_t start,
                              std::uint64_t numberOfElements) {
    if (!isFillable(dataPattern.size(), start, numberOfElements)) return;
    const std::size_t at = start - startAddress_;
    for (std::size_t i = 0; i < numberOfElements; ++i)
        elements_.apply(at + i, dataPattern[i % dataPattern.size()]);
}

void MemoryBuffer::writePattern(std::span<const std::uint8_t> bytes, std::uint64_t start,
                                std::uint64_t numberOfBytes) {
    if (isFillable(bytes.size(), start, numberOfBytes))
        elements_.writePattern(start - startAddress_, bytes, numberOfBytes);
}

void MemoryBuffer::fillPattern(std::span<const std::uint8_t> bytes, std::uint64_t start,
                               std::uint64_t numberOfBytes) {
    if (isFillable(bytes.size(), start, numberOfBytes))
        elements_.fillPattern(start - startAddress_, bytes, numberOfBytes);
}

void MemoryBuffer::fillFrom(ElementView pattern, std::uint64_t start) {
    if (isFillable(pattern.size(), start, pattern.size()))
        elements_.apply(start - startAddress_, pattern);
}

void MemoryBuffer::overlayBytes(std::span<const std::uint8_t> bytes, std::uint64_t start) {
    const std::optional<Area> part = overlap({start, bytes.size()});
    if (part)
        elements_.write(part->start - startAddress_,
                        bytes.subspan(part->start - start, part->length));
}

MemoryBuffer MemoryBuffer::extractMemory(std::uint64_t start, std::uint64_t dataLength) const {
    const std::uint64_t end = getArea().end();
    if (start < startAddress_ || start > end) {
        Facts::report(Facts::ExtractStartOutside{start, startAddress_, end});
        return {0, 0};
    }
    if (dataLength > end - start) {
        Facts::report(Facts::ExtractTooLong{start, dataLength, end});
        return {0, 0};
    }
    MemoryBuffer extract(start, dataLength);
    extract.fillFrom(viewElements().part(start - startAddress_, dataLength), start);
    return extract;
}

/// The part of `area` that lies in the image, if it has any address.
std::optional<Area> MemoryBuffer::overlap(const Area& area) const {
    if (area.length == 0 || elements_.size() == 0) return std::nullopt;
    return area.clippedTo(getArea());
}

void MemoryBuffer::overlay(const MemoryBuffer& other) {
    const std::optional<Area> part = overlap(other.getArea());
    if (part)
        elements_.replace(
            part->start - startAddress_,
            other.viewElements().part(part->start - other.startAddress_, part->length));
}

void MemoryBuffer::merge(const MemoryBuffer& other, bool keepsWritten) {
    const std::optional<Area> part = overlap(other.getArea());
    if (part)
        elements_.merge(part->start - startAddress_,
                        other.viewElements().part(part->start - other.startAddress_, part->length),
                        keepsWritten);
}

void MemoryBuffer::appendBytes(std::vector<std::uint8_t>& output, std::uint64_t start,
                               std::uint64_t dataLength) const {
    const ElementView range = viewRange(start, dataLength);
    const std::size_t length = output.size();
    output.resize(length + range.size());
    range.copyBytes(output.data() + length);
}

}  // namespace Buffer
