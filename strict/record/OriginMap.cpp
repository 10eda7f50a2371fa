#include "strict/record/OriginMap.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Strict {

using Buffer::Area;
using Buffer::AreaList;

namespace {

/// The later range goes on with the same bytes of a source as the earlier one.
bool goesOn(const OriginMap::Range& earlier, const OriginMap::Range& later) {
    return earlier.area.end() == later.area.start && earlier.source == later.source &&
           earlier.moved == later.moved;
}

}  // namespace

OriginMap::OriginMap(std::vector<Range> ranges) {
    std::ranges::sort(ranges, {}, [](const Range& range) { return range.area.start; });
    const auto haveCommon = [](const Range& earlier, const Range& later) {
        return earlier.area.end() > later.area.start;
    };
    if (std::ranges::adjacent_find(ranges, haveCommon) != ranges.end())
        std::ranges::sort(ranges, {}, &Range::source);
    for (const Range& range : ranges) set(range);
}

/// The first range that ends beyond the start of `area`, searched from a range before it on, near
/// which it often is.
RangeList::Iterator OriginMap::firstFrom(RangeList::Iterator near, const Area& area) const {
    constexpr int mostSteps = 8;
    for (int i = 0; i < mostSteps; ++i, ++near)
        if (near == ranges_.end() || near->area.end() > area.start) return near;
    return ranges_.firstBeyond(area.start);
}

void OriginMap::set(const Range& range) {
    if (range.area.length == 0) return;
    // Most ranges come in the order of their addresses.
    const bool isLast = ranges_.empty() || ranges_.back().area.end() <= range.area.start;
    insert(isLast ? ranges_.end() : cleared(range.area, ranges_.firstBeyond(range.area.start)),
           range);
}

/// Adds a range whose addresses no other one has.
///
/// @param next  the range after it
/// @return the range that it became a part of
RangeList::Iterator OriginMap::insert(RangeList::Iterator next, const Range& range) {
    RangeList::Iterator entry;
    if (next != ranges_.begin() && goesOn(*std::prev(next), range)) {
        entry = std::prev(next);
        ranges_.lengthen(entry, range.area.length);
    } else {
        entry = ranges_.insert(next, range);
    }
    next = std::next(entry);
    if (next == ranges_.end() || !goesOn(*entry, *next)) return entry;
    const std::uint64_t length = next->area.length;
    ranges_.erase(next);
    ranges_.lengthen(entry, length);
    return entry;
}

void OriginMap::erase(const Area& area) {
    if (area.length != 0) cleared(area, ranges_.firstBeyond(area.start));
}

/// Forgets the addresses of `area`.
///
/// @param at  the first range that ends beyond its start
/// @return the first range after it
RangeList::Iterator OriginMap::cleared(const Area& area, RangeList::Iterator at) {
    while (at != ranges_.end() && at->area.start < area.end()) {
        const Range old = *at;
        at = ranges_.erase(at);
        if (old.area.start < area.start) {
            Range head = old;
            head.area.length = area.start - old.area.start;
            at = std::next(ranges_.insert(at, head));
        }
        if (old.area.end() > area.end()) {
            Range tail = old;
            tail.area = {area.end(), old.area.end() - area.end()};
            at = ranges_.insert(at, tail);
        }
    }
    return at;
}

void OriginMap::lay(const OriginMap& other, const Area& area) {
    if (area.length == 0) return;
    auto at = ranges_.firstBeyond(area.start);
    for (auto laid = other.ranges_.firstBeyond(area.start);
         laid != other.ranges_.end() && laid->area.start < area.end(); ++laid) {
        Range part = *laid;
        const std::uint64_t start = std::max(part.area.start, area.start);
        part.area = {start, std::min(part.area.end(), area.end()) - start};
        at = insert(cleared(part.area, firstFrom(at, part.area)), part);
    }
}

void OriginMap::move(std::uint64_t distance) {
    if (distance != 0) ranges_.move(distance);
}

const OriginMap::Range* OriginMap::find(std::uint64_t address) const {
    const auto at = ranges_.firstBeyond(address);
    return at == ranges_.end() || at->area.start > address ? nullptr : &*at;
}

std::uint64_t OriginMap::size() const {
    std::uint64_t count = 0;
    for (const Range& range : ranges_) count += range.area.length;
    return count;
}

AreaList uncovered(const Area& area, const OriginMap& map) {
    OriginMap covered;
    covered.lay(map, area);
    AreaList gaps;
    std::uint64_t at = area.start;
    for (const OriginMap::Range& range : covered.ranges()) {
        if (range.area.start != at) gaps.push_back({at, range.area.start - at});
        at = range.area.end();
    }
    if (at != area.end()) gaps.push_back({at, area.end() - at});
    return gaps;
}

}  // namespace Strict
