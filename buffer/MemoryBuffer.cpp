#include "buffer/MemoryBuffer.hpp"

#include <algorithm>
#include <array>
#include <ios>

#include "util/Report.hpp"

namespace Buffer {

namespace {

/// Elements of a pattern in the way an image holds them, repeated as far as there is room, so that
/// short patterns do not cost a step of their own for every few elements. On the stack: memory that
/// runs out between two fills of one statement would leave the work half done.
class PatternPiece {
public:
    static constexpr std::size_t capacity = 4096;

    /// As many whole repetitions of `pattern`, for which there is room once, as `wanted` elements
    /// take and there is room for.
    PatternPiece(std::span<const MemoryElement> pattern, std::size_t wanted) {
        do {
            append(pattern);
        } while (size_ < wanted && size_ + pattern.size() <= capacity);
    }

    ElementView view() const {
        return {values_.data(), hasFillers_ ? fillers_.data() : nullptr, written_.data(), size_};
    }

private:
    void append(std::span<const MemoryElement> elements) {
        while (!elements.empty()) {
            const auto word = elements.first(WrittenBits::inWord(size_, elements.size()));
            appendWord(word);
            elements = elements.subspan(word.size());
        }
    }

    void appendWord(std::span<const MemoryElement> elements) {
        WrittenBits::Word flags = 0;
        unsigned fillers = 0;
        for (std::size_t i = 0; i < elements.size(); ++i) {
            const MemoryElement& element = elements[i];
            values_[size_ + i] = element.value;
            fillers_[size_ + i] = element.filler;
            const WrittenBits::Word isWritten = element.hasValue != 0 ? 1 : 0;
            flags |= isWritten << i;
            fillers |= element.filler;
        }
        hasFillers_ = hasFillers_ || fillers != 0;
        WrittenBits::write(written_.data(), size_, elements.size(), flags);
        size_ += elements.size();
    }

    std::array<std::uint8_t, capacity> values_;
    std::array<std::uint8_t, capacity> fillers_;
    std::array<WrittenBits::Word, WrittenBits::wordsFor(capacity)> written_{};
    std::size_t size_ = 0;
    bool hasFillers_ = false;
};

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
    const ElementView all = viewElements();
    std::vector<MemoryElement> copy(all.size());
    for (std::size_t i = 0; i < copy.size(); ++i) copy[i] = all[i];
    return copy;
}

ElementView MemoryBuffer::viewRange(std::uint64_t start, std::uint64_t dataLength) const {
    if (start < startAddress || start > endAddress() || dataLength > endAddress() - start)
        return {};
    return viewElements().part(start - startAddress, dataLength);
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

/// Says why not.
bool MemoryBuffer::isFillable(std::size_t patternSize, std::uint64_t start,
                              std::uint64_t numberOfElements) const {
    if (patternSize == 0) {
        Util::reportLine(
            "MemoryBuffer(fillMemory-Operation). dataPattern was empty, so nothing is filled");
        Util::reportLine("  Nothing was filled!");
        return false;
    }
    if (start < startAddress || start > endAddress()) {
        // The start stands in whatever base the stream was left in.
        Util::reportLine("MemoryBuffer(fillMemory-Operation). StartAddress int (", start,
                         ") was not in range of memoryBuffer.");
        Util::reportLine("  Possible max range could be from int [ 0x", std::hex, startAddress,
                         " to 0x", std::hex, endAddress(), "].");
        Util::reportLine("  Nothing was filled!");
        return false;
    }
    if (numberOfElements > endAddress() - start) {
        Util::reportLine("MemoryBuffer(fillMemory - Operation). NumberOfElements int ( 0x",
                         std::hex, numberOfElements, ") are too many.");
        Util::reportLine("  Nothing was filled!");
        return false;
    }
    return true;
}

/// Applies `pattern` to `count` elements from `at` on, from its first element again and again.
void MemoryBuffer::applyAgain(ElementView pattern, std::size_t at, std::size_t count) {
    for (const std::size_t end = at + count; at < end; at += pattern.size())
        elements.apply(at, pattern.part(0, std::min(pattern.size(), end - at)));
}

void MemoryBuffer::fillMemory(std::span<const MemoryElement> dataPattern, std::uint64_t start,
                              std::uint64_t numberOfElements) {
    if (!isFillable(dataPattern.size(), start, numberOfElements)) return;
    const std::size_t at = start - startAddress;
    if (dataPattern.size() <= PatternPiece::capacity) {
        applyAgain(PatternPiece(dataPattern, numberOfElements).view(), at, numberOfElements);
        return;
    }
    for (std::size_t done = 0; done < numberOfElements;) {
        const auto rest = dataPattern.subspan(done % dataPattern.size());
        const auto part =
            rest.first(std::min({rest.size(), PatternPiece::capacity, numberOfElements - done}));
        elements.apply(at + done, PatternPiece(part, part.size()).view());
        done += part.size();
    }
}

void MemoryBuffer::fillFrom(ElementView pattern, std::uint64_t start,
                            std::uint64_t numberOfElements) {
    if (isFillable(pattern.size(), start, numberOfElements))
        applyAgain(pattern, start - startAddress, numberOfElements);
}

void MemoryBuffer::overlayBytes(std::span<const std::uint8_t> bytes, std::uint64_t start) {
    const std::uint64_t skipped = start < startAddress ? startAddress - start : 0;
    if (skipped >= bytes.size() || start >= endAddress()) return;
    const std::uint64_t at = start + skipped - startAddress;
    elements.write(at,
                   bytes.subspan(skipped, std::min(bytes.size() - skipped, elements.size() - at)));
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
    extract.fillFrom(viewElements().part(start - startAddress, dataLength), start, dataLength);
    return extract;
}

void MemoryBuffer::overlay(const MemoryBuffer& other) {
    const std::uint64_t first = std::max(startAddress, other.startAddress);
    const std::uint64_t end = std::min(endAddress(), other.endAddress());
    if (first >= end) return;
    elements.replace(first - startAddress,
                     other.viewElements().part(first - other.startAddress, end - first));
}

void MemoryBuffer::appendBytes(std::vector<std::uint8_t>& output, std::uint64_t start,
                               std::uint64_t dataLength) const {
    const ElementView range = viewRange(start, dataLength);
    const std::size_t length = output.size();
    output.resize(length + range.size());
    range.copyBytes(output.data() + length);
}

}  // namespace Buffer
