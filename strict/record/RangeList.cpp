#include "strict/record/RangeList.hpp"

#include <algorithm>
#include <utility>

namespace Strict {

namespace {

constexpr std::size_t mostOfBlock = 128;

}  // namespace

RangeList::Iterator RangeList::firstBeyond(std::uint64_t address) const {
    if (blocks_.empty()) return end();
    const auto block = std::prev(blocks_.upper_bound(address));
    const auto& ranges = block->second;
    const auto later = std::ranges::upper_bound(
        ranges, address, {}, [](const SourcedRange& range) { return range.area.start; });
    // The range before it may have the address.
    Iterator found{block, static_cast<std::size_t>(later - ranges.begin())};
    if (found != begin()) {
        --found;
        if (found->area.end() <= address) ++found;
    }
    return found;
}

RangeList::Iterator RangeList::insert(Iterator next, const SourcedRange& range) {
    ++size_;
    if (blocks_.empty()) blocks_[0];
    // A range in front of a block belongs to the one before, unless its addresses are the block's.
    if (next.index_ == 0 && next.block_ != blocks_.begin() &&
        (next.block_ == blocks_.end() || range.area.start < next.block_->first)) {
        --next.block_;
        next.index_ = next.block_->second.size();
    }
    auto block = changeable(next.block_);
    std::size_t index = next.index_;
    if (block->second.size() == mostOfBlock) {
        // Ranges that come in the order of their addresses leave full blocks.
        const bool isLast = index == mostOfBlock && std::next(block) == blocks_.end();
        const std::size_t middle = isLast ? mostOfBlock : mostOfBlock / 2;
        std::vector<SourcedRange> upper;
        upper.reserve(mostOfBlock);
        upper.assign(block->second.begin() + static_cast<std::ptrdiff_t>(middle),
                     block->second.end());
        block->second.resize(middle);
        const std::uint64_t start = isLast ? range.area.start : upper.front().area.start;
        const auto later = blocks_.emplace_hint(std::next(block), start, std::move(upper));
        if (isLast || index > middle) {
            block = later;
            index -= middle;
        }
    }
    block->second.insert(block->second.begin() + static_cast<std::ptrdiff_t>(index), range);
    return {block, index};
}

RangeList::Iterator RangeList::erase(Iterator range) {
    --size_;
    const auto block = changeable(range.block_);
    auto& ranges = block->second;
    ranges.erase(ranges.begin() + static_cast<std::ptrdiff_t>(range.index_));
    const auto next = std::next(block);
    if (range.index_ != ranges.size()) return range;
    if (!ranges.empty()) return {next, 0};
    // The first block has the addresses from 0 on, whichever ranges it has.
    if (block == blocks_.begin() && next != blocks_.end()) {
        ranges = std::move(next->second);
        blocks_.erase(next);
        return {block, 0};
    }
    return {blocks_.erase(block), 0};
}

void RangeList::lengthen(Iterator range, std::uint64_t length) {
    changeable(range.block_)->second[range.index_].area.length += length;
}

void RangeList::move(std::uint64_t distance) {
    Blocks moved;
    for (auto& [first, ranges] : blocks_) {
        for (SourcedRange& range : ranges) {
            range.area.start += distance;
            range.moved += distance;
        }
        const std::uint64_t start = moved.empty() ? 0 : ranges.front().area.start;
        moved.emplace_hint(moved.end(), start, std::move(ranges));
    }
    blocks_ = std::move(moved);
}

}  // namespace Strict
