#include "buffer/MemoryBuffer.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <ios>

#include "util/Report.hpp"

namespace Buffer {

namespace {

void applyElement(MemoryElement& destination, const MemoryElement& source) {
    if (source.hasValue != 0) {
        destination.value = source.value;
        destination.hasValue = 1;
    } else {
        destination.filler = source.filler;
    }
}

/// Applies `pattern` to `destination` again and again, from its first element on.
void applyPattern(std::span<MemoryElement> destination, std::span<const MemoryElement> pattern) {
    while (!destination.empty()) {
        const std::size_t count = std::min(destination.size(), pattern.size());
        for (std::size_t i = 0; i < count; ++i) applyElement(destination[i], pattern[i]);
        destination = destination.subspan(count);
    }
}

/// A pattern is repeated up to this many elements before it is applied, so that short ones do not
/// cost a loop of their own for every few elements.
constexpr std::size_t patternStretch = 4096;

/// Applies a pattern no longer than that. It is repeated on the stack: memory that runs out between
/// two fills of one statement would leave the work half done.
void applyShortPattern(std::span<MemoryElement> destination,
                       std::span<const MemoryElement> pattern) {
    std::array<MemoryElement, patternStretch> longer;
    std::size_t length = 0;
    for (; length + pattern.size() <= patternStretch; length += pattern.size())
        std::ranges::copy(pattern, longer.data() + length);
    applyPattern(destination, std::span(longer).first(length));
}

}  // namespace

MemoryBuffer::MemoryBuffer(std::uint64_t start, std::uint64_t dataLength) : startAddress(start) {
    ElementStore reserved(dataLength);
    if (dataLength > ~start) {
        Util::reportLine(
            "MemoryBuffer(Constructor-Operation). The sum of startAddress + dataLength are not "
            "addressable.");
        Util::reportLine("  Nothing was filled!");
        return;
    }
    if (dataLength >= MAX_ALLOWED_MEMORY_BUFFER_SIZE) {
        Util::reportLine(
            "MemoryBuffer(Constructor-Operation). The dataLength was bigger than "
            "MAX_ALLOWED_MEMORY_BUFFER_SIZE int(0x",
            std::hex, MAX_ALLOWED_MEMORY_BUFFER_SIZE, ").");
        Util::reportLine("  An empty Memorybuffer was created!");
        return;
    }
    elements = std::move(reserved);
}

std::vector<MemoryElement> MemoryBuffer::getElements() const {
    const auto all = viewElements();
    return {all.begin(), all.end()};
}

std::span<const MemoryElement> MemoryBuffer::viewRange(std::uint64_t start,
                                                       std::uint64_t dataLength) const {
    if (start < startAddress || start > endAddress() || dataLength > endAddress() - start)
        return {};
    return viewElements().subspan(start - startAddress, dataLength);
}

void MemoryBuffer::setStartingAddress(std::uint64_t newStartAddress) {
    if (newStartAddress > ~getDataLength()) {
        Util::reportLine("MemoryBuffer(setStartingAddress-Operation). StartAddress (0x", std::hex,
                         newStartAddress, ") is to big.");
        Util::reportLine("  Possible max startAddress for this object is (0x", std::hex,
                         ~getDataLength(), ").");
        Util::reportLine("  StartAddress has not been changed!");
        return;
    }
    startAddress = newStartAddress;
}

void MemoryBuffer::fillMemory(std::span<const MemoryElement> dataPattern, std::uint64_t start,
                              std::uint64_t numberOfElements) {
    if (dataPattern.empty()) {
        Util::reportLine(
            "MemoryBuffer(fillMemory-Operation). dataPattern was empty, so nothing is filled");
        Util::reportLine("  Nothing was filled!");
        return;
    }
    if (start < startAddress || start > endAddress()) {
        // The start stands in whatever base the stream was left in.
        Util::reportLine("MemoryBuffer(fillMemory-Operation). StartAddress int (", start,
                         ") was not in range of memoryBuffer.");
        Util::reportLine("  Possible max range could be from int [ 0x", std::hex, startAddress,
                         " to 0x", std::hex, endAddress(), "].");
        Util::reportLine("  Nothing was filled!");
        return;
    }
    if (numberOfElements > endAddress() - start) {
        Util::reportLine("MemoryBuffer(fillMemory - Operation). NumberOfElements int ( 0x",
                         std::hex, numberOfElements, ") are too many.");
        Util::reportLine("  Nothing was filled!");
        return;
    }
    const auto destination = elements.view().subspan(start - startAddress, numberOfElements);
    if (dataPattern.size() < patternStretch && dataPattern.size() < numberOfElements)
        applyShortPattern(destination, dataPattern);
    else
        applyPattern(destination, dataPattern);
}

void MemoryBuffer::overlayBytes(std::span<const std::uint8_t> bytes, std::uint64_t start) {
    const std::uint64_t skipped = start < startAddress ? startAddress - start : 0;
    if (skipped >= bytes.size() || start >= endAddress()) return;
    bytes = bytes.subspan(skipped);
    const auto room = elements.view().subspan(start + skipped - startAddress);
    writtenElements(bytes.first(std::min(bytes.size(), room.size())), room);
}

MemoryBuffer MemoryBuffer::extractMemory(std::uint64_t start, std::uint64_t dataLength) const {
    if (start < startAddress || start > endAddress()) {
        Util::reportLine("MemoryBuffer(extractMemory-Operation). StartAddress (0x", std::hex, start,
                         ") is not in range.");
        Util::reportLine("  Possible max range could be from [0x", std::hex, startAddress, " to 0x",
                         std::hex, endAddress(), "].");
        Util::reportLine("  Nothing has been extracted!");
        return {0, 0};
    }
    if (dataLength > endAddress() - start) {
        Util::reportLine("MemoryBuffer(extractMemory-Operation). Requested dataLength (0x",
                         std::hex, dataLength, ") are too large.");
        Util::reportLine("  Nothing has been extracted!");
        return {0, 0};
    }
    MemoryBuffer extract(start, dataLength);
    extract.fillMemory(viewElements().subspan(start - startAddress, dataLength), start, dataLength);
    return extract;
}

void MemoryBuffer::overlay(const MemoryBuffer& other) {
    const std::uint64_t first = std::max(startAddress, other.startAddress);
    const std::uint64_t end = std::min(endAddress(), other.endAddress());
    if (first >= end) return;
    const auto source = other.viewElements().subspan(first - other.startAddress, end - first);
    std::ranges::copy(source, elements.view().subspan(first - startAddress).begin());
}

void MemoryBuffer::appendBytes(std::vector<std::uint8_t>& output, std::uint64_t start,
                               std::uint64_t dataLength) const {
    const auto range = viewRange(start, dataLength);
    const std::size_t length = output.size();
    output.resize(length + range.size());
    effectiveBytes(range, output.data() + length);
}

}  // namespace Buffer
