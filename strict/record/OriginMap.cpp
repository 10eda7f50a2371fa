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

/// The first range that ends beyond the start of `area`.
OriginMap::Ranges::const_iterator OriginMap::firstIn(const Area& area) const {
    auto next = ranges_.upper_bound(area.start);
    if (next != ranges_.begin() && std::prev(next)->second.area.end() > area.start) --next;
    return next;
}

/// The same, searched from a range before it on, near which it often is.
OriginMap::Ranges::iterator OriginMap::firstFrom(Ranges::iterator near, const Area& area) {
    constexpr int mostSteps = 8;
    for (int i = 0; i < mostSteps; ++i, ++near)
        if (near == ranges_.end() || near->second.area.end() > area.start) return near;
    return changeable(firstIn(area));
}

OriginMap::Ranges::iterator OriginMap::changeable(Ranges::const_iterator entry) {
    return ranges_.erase(entry, entry);
}

void OriginMap::set(const Range& range) {
    if (range.area.length == 0) return;
    // Most ranges come in the order of their addresses.
    const bool isLast = ranges_.empty() || ranges_.rbegin()->second.area.end() <= range.area.start;
    insert(isLast ? ranges_.end() : cleared(range.area, changeable(firstIn(range.area))), range);
}

/// Adds a range whose addresses no other one has.
///
/// @param next  the range after it
/// @return the range that it became a part of
OriginMap::Ranges::iterator OriginMap::insert(Ranges::iterator next, const Range& range) {
    auto entry = ranges_.emplace_hint(next, range.area.start, range);
    if (entry != ranges_.begin() && goesOn(std::prev(entry)->second, entry->second))
        entry = joinNext(std::prev(entry));
    if (next != ranges_.end() && goesOn(entry->second, next->second)) joinNext(entry);
    return entry;
}

/// Adds the addresses of the next range to those of `entry`.
OriginMap::Ranges::iterator OriginMap::joinNext(Ranges::iterator entry) {
    const auto next = std::next(entry);
    entry->second.area.length += next->second.area.length;
    ranges_.erase(next);
    return entry;
}

void OriginMap::erase(const Area& area) {
    if (area.length != 0) cleared(area, changeable(firstIn(area)));
}

/// Forgets the addresses of `area`.
///
/// @param at  the first range that ends beyond its start
/// @return the first range after it
OriginMap::Ranges::iterator OriginMap::cleared(const Area& area, Ranges::iterator at) {
    while (at != ranges_.end() && at->second.area.start < area.end()) {
        const Range old = at->second;
        at = ranges_.erase(at);
        if (old.area.start < area.start) {
            Range head = old;
            head.area.length = area.start - old.area.start;
            ranges_.emplace_hint(at, head.area.start, head);
        }
        if (old.area.end() > area.end()) {
            Range tail = old;
            tail.area = {area.end(), old.area.end() - area.end()};
            at = ranges_.emplace_hint(at, tail.area.start, tail);
        }
    }
    return at;
}

void OriginMap::lay(const OriginMap& other, const Area& area) {
    if (area.length == 0) return;
    auto at = changeable(firstIn(area));
    for (auto laid = other.firstIn(area);
         laid != other.ranges_.end() && laid->second.area.start < area.end(); ++laid) {
        Range part = laid->second;
        const std::uint64_t start = std::max(part.area.start, area.start);
        part.area = {start, std::min(part.area.end(), area.end()) - start};
        at = insert(cleared(part.area, firstFrom(at, part.area)), part);
    }
}

void OriginMap::move(std::uint64_t distance) {
    if (distance == 0) return;
    Ranges moved;
    for (auto& [start, range] : ranges_) {
        range.area.start += distance;
        range.moved += distance;
        moved.emplace_hint(moved.end(), range.area.start, range);
    }
    ranges_ = std::move(moved);
}

const OriginMap::Range* OriginMap::find(std::uint64_t address) const {
    const auto at = firstIn({address, 1});
    return at == ranges_.end() || at->second.area.start > address ? nullptr : &at->second;
}

std::uint64_t OriginMap::size() const {
    std::uint64_t count = 0;
    for (const auto& [start, range] : ranges_) count += range.area.length;
    return count;
}

AreaList uncovered(const Area& area, const OriginMap& map) {
    OriginMap covered;
    covered.lay(map, area);
    AreaList gaps;
    std::uint64_t at = area.start;
    for (const auto& [start, range] : covered.ranges()) {
        if (start != at) gaps.push_back({at, start - at});
        at = range.area.end();
    }
    if (at != area.end()) gaps.push_back({at, area.end() - at});
    return gaps;
}

}  // namespace Strict
