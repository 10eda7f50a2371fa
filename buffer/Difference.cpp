#include "buffer/Difference.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <utility>

namespace Buffer {

namespace {

/// Joins addresses that are handed over in ascending order.
class Ranges {
public:
    void add(std::uint64_t address) {
        if (!areas_.empty() && areas_.back().end() == address)
            ++areas_.back().length;
        else
            areas_.push_back({address, 1});
    }
    AreaList take() { return std::move(areas_); }

private:
    AreaList areas_;
};

WrittenBits::Word flags(ElementView part, std::size_t at, std::size_t count) {
    return part.empty() ? 0 : part.written(at, count);
}

/// Compares a range that each image has as a whole or not at all.
void compare(ElementView left, ElementView right, std::uint64_t start, Ranges& ranges) {
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
            if (!isEqual) ranges.add(start + at + i);
        }
    }
}

}  // namespace

AreaList differences(const MemoryBuffer& left, const MemoryBuffer& right) {
    const Area one = left.getArea();
    const Area two = right.getArea();
    // Between two of these borders each image has all addresses or none.
    std::array borders{one.start, one.end(), two.start, two.end()};
    std::ranges::sort(borders);
    Ranges ranges;
    for (std::size_t i = 0; i + 1 < borders.size(); ++i) {
        const std::uint64_t start = borders[i];
        const std::uint64_t length = borders[i + 1] - start;
        if (length != 0)
            compare(left.viewRange(start, length), right.viewRange(start, length), start, ranges);
    }
    return ranges.take();
}

}  // namespace Buffer
