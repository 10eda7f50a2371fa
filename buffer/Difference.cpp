#include "buffer/Difference.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

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
    for (std::size_t at = 0; at < size; at += WrittenBits::perWord) {
        const std::size_t count = std::min(WrittenBits::perWord, size - at);
        const WrittenBits::Word mine = flags(left, at, count);
        const WrittenBits::Word other = flags(right, at, count);
        if ((mine | other) == 0) continue;
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
