#include "buffer/Difference.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <span>

namespace Buffer {

namespace {

WrittenBits::Word flags(ElementView part, std::size_t at, std::size_t count) {
    return part.empty() ? 0 : part.written(at, count);
}

/// Adds an address above all those that the areas have.
void add(AreaList& areas, std::uint64_t address) {
    if (!areas.empty() && areas.back().end() == address)
        ++areas.back().length;
    else
        areas.push_back({address, 1});
}

/// Calls `take` with each address, ascending, at which only the left image has a byte, only the
/// right one has, or both have different ones, and with its two flags.
template <class Take>
void compare(ElementView left, ElementView right, std::uint64_t start, Take take) {
    const std::size_t size = std::max(left.size(), right.size());
    const auto nextWritten = [&](std::size_t at) {
        return std::min(left.empty() ? size : left.findWritten(at),
                        right.empty() ? size : right.findWritten(at));
    };
    std::size_t count = 0;
    for (std::size_t at = nextWritten(0); at < size; at += count) {
        count = std::min(WrittenBits::perWord, size - at);
        count = left.inBlock(at, right.inBlock(at, count));
        const WrittenBits::Word mine = flags(left, at, count);
        const WrittenBits::Word other = flags(right, at, count);
        if ((mine | other) == 0) {
            count = nextWritten(at + count) - at;
            continue;
        }
        const bool bothAreThere = !left.empty() && !right.empty();
        if (mine == other && bothAreThere &&
            std::memcmp(left.values() + at, right.values() + at, count) == 0)
            continue;
        for (std::size_t i = 0; i < count; ++i) {
            const bool isInLeft = (mine >> i & 1U) != 0;
            const bool isInRight = (other >> i & 1U) != 0;
            const bool isEqual = isInLeft == isInRight &&
                                 (!isInLeft || left.values()[at + i] == right.values()[at + i]);
            if (!isEqual) take(start + at + i, isInLeft, isInRight);
        }
    }
}

ElementView part(const MemoryBuffer* image, const Area& range) {
    return image == nullptr ? ElementView() : image->viewRange(range.start, range.length);
}

/// Adds the places at which the bytes differ, the first of which has the address `start`.
void addDifferent(AreaList& areas, std::span<const std::uint8_t> one,
                  std::span<const std::uint8_t> other, std::uint64_t start) {
    for (std::size_t at = 0; at < one.size(); ++at) {
        const auto rest = std::ranges::mismatch(one.subspan(at), other.subspan(at));
        at = static_cast<std::size_t>(rest.in1 - one.begin());
        if (at != one.size()) add(areas, start + at);
    }
}

}  // namespace

void appendDifferences(const MemoryBuffer* left, const MemoryBuffer* right, const Area& range,
                       Differences& found) {
    compare(part(left, range), part(right, range), range.start,
            [&found](std::uint64_t address, bool isInLeft, bool isInRight) {
                AreaList& areas = !isInRight  ? found.onlyLeft
                                  : !isInLeft ? found.onlyRight
                                              : found.changed;
                add(areas, address);
            });
}

AreaList effectiveDifferences(ElementView one, ElementView other, std::uint64_t start) {
    constexpr std::size_t pieceSize = 4096;
    std::array<std::uint8_t, pieceSize> ones{};
    std::array<std::uint8_t, pieceSize> others{};
    AreaList areas;
    std::size_t count = 0;
    for (std::size_t at = 0;; at += count) {
        at = std::min(one.skipUntouched(at), other.skipUntouched(at));
        if (at == one.size()) return areas;
        count = std::min(pieceSize, one.size() - at);
        one.part(at, count).copyBytes(ones.data());
        other.part(at, count).copyBytes(others.data());
        addDifferent(areas, std::span(ones).first(count), std::span(others).first(count),
                     start + at);
    }
}

AreaList differences(const MemoryBuffer& left, const MemoryBuffer& right) {
    const Area one = left.getArea();
    const Area two = right.getArea();
    // Between two of these borders each image has all addresses or none.
    std::array borders{one.start, one.end(), two.start, two.end()};
    std::ranges::sort(borders);
    AreaList ranges;
    for (std::size_t i = 0; i + 1 < borders.size(); ++i) {
        const std::uint64_t start = borders[i];
        const std::uint64_t length = borders[i + 1] - start;
        if (length != 0)
            compare(left.viewRange(start, length), right.viewRange(start, length), start,
                    [&ranges](std::uint64_t address, bool, bool) { add(ranges, address); });
    }
    return ranges;
}

}  // namespace Buffer
