#include "buffer/Overlap.hpp"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace Buffer {

namespace {

using WrittenBits::Word;

/// Appends the addresses of set flags, the first of which is for `start`, to ascending ranges.
void addFlags(AreaList& areas, std::uint64_t start, std::size_t count, Word flags) {
    const auto add = [&](std::uint64_t address, std::size_t length) {
        if (!areas.empty() && areas.back().end() == address)
            areas.back().length += length;
        else
            areas.push_back({address, length});
    };
    if (flags == WrittenBits::all(count))
        add(start, count);
    else
        WrittenBits::forEach(flags, [&](std::size_t k) { add(start + k, 1); });
}

/// The ranges of addresses that `elements`, from `start` on, have written and whose flag
/// `select(at, count)` sets, for each stretch of at most 64 of them.
template <class Select>
AreaList areasWhere(std::uint64_t start, const ElementView& elements, Select select) {
    AreaList areas;
    for (std::size_t at = elements.findWritten(0); at < elements.size();) {
        const std::size_t count = std::min(WrittenBits::perWord, elements.size() - at);
        const Word flags = select(at, count);
        if (flags != 0) addFlags(areas, start + at, count, flags);
        at = flags != 0 ? at + count : elements.findWritten(at + count);
    }
    return areas;
}

/// What both images have of their common addresses.
struct Common {
    Common(const MemoryBuffer& one, const MemoryBuffer& other) {
        const auto part = one.getArea().clippedTo(other.getArea());
        if (!part || one.getDataLength() == 0 || other.getDataLength() == 0) return;
        start = part->start;
        earlier = one.viewRange(part->start, part->length);
        later = other.viewRange(part->start, part->length);
    }
    std::uint64_t start = 0;
    ElementView earlier;
    ElementView later;
};

/// Notes where the bytes of a range that both images have written differ.
void compare(Overlap& overlap, const Common& common) {
    const std::size_t begin = overlap.area.start - common.start;
    const std::uint8_t* const one = common.earlier.values();
    const std::uint8_t* const other = common.later.values();
    constexpr std::size_t stretch = 4096;
    for (std::size_t at = begin; at < begin + overlap.area.length; at += stretch) {
        const std::size_t end = std::min(at + stretch, begin + overlap.area.length);
        if (std::memcmp(one + at, other + at, end - at) == 0) continue;
        for (std::size_t i = at; i < end; ++i) {
            if (one[i] == other[i]) continue;
            if (overlap.differences++ != 0) continue;
            overlap.firstDifference = common.start + i;
            overlap.earlier = one[i];
            overlap.later = other[i];
        }
    }
}

}  // namespace

std::vector<Overlap> overlaps(const MemoryBuffer& earlier, const MemoryBuffer& later) {
    const Common common(earlier, later);
    const AreaList areas =
        areasWhere(common.start, common.earlier, [&](std::size_t at, std::size_t count) {
            return common.earlier.written(at, count) & common.later.written(at, count);
        });
    std::vector<Overlap> found;
    found.reserve(areas.size());
    for (const Area& area : areas) {
        found.push_back({area});
        compare(found.back(), common);
    }
    return found;
}

AreaList wipedAreas(const MemoryBuffer& earlier, const MemoryBuffer& later) {
    const Common common(earlier, later);
    return areasWhere(common.start, common.earlier, [&](std::size_t at, std::size_t count) {
        return common.earlier.written(at, count) & ~common.later.written(at, count);
    });
}

AreaList writtenAreas(const MemoryBuffer& image, const Area& area) {
    const auto part = area.clippedTo(image.getArea());
    if (!part) return {};
    const ElementView elements = image.viewRange(part->start, part->length);
    return areasWhere(part->start, elements, [&](std::size_t at, std::size_t count) {
        return elements.written(at, count);
    });
}

}  // namespace Buffer
