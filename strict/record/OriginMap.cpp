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

/// The first range that ends beyond the start of `area`.
OriginMap::Ranges::const_iterator OriginMap::firstIn(const Area& area) const {
    auto next = ranges_.upper_bound(area.start);
    if (next != ranges_.begin() && std::prev(next)->second.area.end() > area.start) --next;
    return next;
}

void OriginMap::set(const Range& range) {
    if (range.area.length == 0) return;
    // Most ranges come in the order of their addresses.
    const bool isLast = ranges_.empty() || ranges_.rbegin()->second.area.end() <= range.area.start;
    if (!isLast) erase(range.area);
    auto entry = isLast ? ranges_.emplace_hint(ranges_.end(), range.area.start, range)
                        : ranges_.emplace(range.area.start, range).first;
    if (entry != ranges_.begin() && goesOn(std::prev(entry)->second, entry->second))
        entry = joinNext(std::prev(entry));
    if (std::next(entry) != ranges_.end() && goesOn(entry->second, std::next(entry)->second))
        joinNext(entry);
}

/// Adds the addresses of the next range to those of `entry`.
OriginMap::Ranges::iterator OriginMap::joinNext(Ranges::iterator entry) {
    const auto next = std::next(entry);
    entry->second.area.length += next->second.area.length;
    ranges_.erase(next);
    return entry;
}

void OriginMap::erase(const Area& area) {
    if (area.length == 0) return;
    auto at = ranges_.erase(firstIn(area), firstIn(area));  // not const any more
    while (at != ranges_.end() && at->second.area.start < area.end()) {
        const Range old = at->second;
        at = ranges_.erase(at);
        if (old.area.start < area.start) {
            Range head = old;
            head.area.length = area.start - old.area.start;
            ranges_.emplace(head.area.start, head);
        }
        if (old.area.end() > area.end()) {
            Range tail = old;
            tail.area = {area.end(), old.area.end() - area.end()};
            at = ranges_.emplace(tail.area.start, tail).first;
        }
    }
}

void OriginMap::lay(const OriginMap& other, const Area& area) {
    for (auto at = other.firstIn(area);
         at != other.ranges_.end() && at->second.area.start < area.end(); ++at) {
        Range part = at->second;
        const std::uint64_t start = std::max(part.area.start, area.start);
        part.area = {start, std::min(part.area.end(), area.end()) - start};
        set(part);
    }
}

void OriginMap::move(std::uint64_t distance) {
    if (distance == 0) return;
    Ranges moved;
    for (auto& [start, range] : ranges_) {
        range.area.start += distance;
        range.moved += distance;
        moved.emplace(range.area.start, range);
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
