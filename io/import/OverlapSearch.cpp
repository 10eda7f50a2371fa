#include "io/import/OverlapSearch.hpp"

#include <algorithm>
#include <iterator>

namespace Io::Import {

OverlapSearch::OverlapSearch(const ParsedData& data, std::size_t most) : data_(&data), most_(most) {
    if (!data.hasOverlaps()) return;
    for (const Run& run : data.runs()) add(run);
    counting_.clear();
}

void OverlapSearch::add(const Run& run) {
    const Buffer::Area area = run.area;
    auto part = counting_.upper_bound(area.start);
    if (part != counting_.begin() && std::prev(part)->second.area.end() > area.start) --part;
    while (part != counting_.end() && part->first < area.end()) {
        const Run old = part->second;
        const std::uint64_t start = std::max(old.area.start, area.start);
        const std::uint64_t end = std::min(old.area.end(), area.end());
        compare({start, end - start}, old.offset + (start - old.area.start),
                run.offset + (start - area.start));
        part = counting_.erase(part);
        if (old.area.start < start)
            counting_.insert_or_assign(old.area.start,
                                       Run{{old.area.start, start - old.area.start}, old.offset});
        if (end < old.area.end())
            part = counting_
                       .insert_or_assign(end, Run{{end, old.area.end() - end},
                                                  old.offset + (end - old.area.start)})
                       .first;
    }
    counting_.insert_or_assign(area.start, run);
}

void OverlapSearch::compare(const Buffer::Area& area, std::size_t earlier, std::size_t later) {
    const auto before = data_->bytesOf({area, earlier});
    const auto after = data_->bytesOf({area, later});
    const auto first = std::ranges::mismatch(before, after);
    RecordOverlap overlap{area, earlier, later, std::nullopt};
    if (first.in1 != before.end())
        overlap.difference = static_cast<std::size_t>(first.in1 - before.begin());
    Found& found = overlap.difference ? different_ : equal_;
    if (found.count++ < most_) found.kept.push_back(overlap);
}

std::optional<Buffer::Overlap> findOverlap(const ParsedData& data, bool isDifferent) {
    const OverlapSearch search(data, 1);
    const auto& found =
        isDifferent || !search.different().kept.empty() ? search.different() : search.equal();
    if (found.kept.empty()) return std::nullopt;
    const RecordOverlap& first = found.kept.front();
    Buffer::Overlap overlap{first.area};
    if (!first.difference) return overlap;
    const auto byteAt = [&](std::size_t offset) { return data.bytesOf({{0, 1}, offset})[0]; };
    for (std::size_t i = *first.difference; i < first.area.length; ++i)
        overlap.differences += byteAt(first.earlier + i) != byteAt(first.later + i) ? 1 : 0;
    overlap.firstDifference = first.area.start + *first.difference;
    overlap.earlier = byteAt(first.earlier + *first.difference);
    overlap.later = byteAt(first.later + *first.difference);
    return overlap;
}

}  // namespace Io::Import
