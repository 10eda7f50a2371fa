#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

#include "buffer/Area.hpp"
#include "strict/record/OriginMap.hpp"

namespace Strict {

/// Finds changes of an image by address and number, in a time that grows with the logarithm of
/// their count: an image may have a hundred thousand of them and as many values over it.
class LatestChange {
public:
    explicit LatestChange(const OriginMap& changes);

    /// The lowest range of `area` whose change has the number `since` or a higher one and for which
    /// `counts` is true.
    template <class Counts>
    std::optional<OriginMap::Range> find(const Buffer::Area& area, std::size_t since,
                                         Counts counts) const {
        return ranges_.empty() ? std::nullopt : find(1, 0, leaves_, area, since, counts);
    }

private:
    template <class Counts>
    std::optional<OriginMap::Range> find(std::size_t node, std::size_t first, std::size_t end,
                                         const Buffer::Area& area, std::size_t since,
                                         Counts counts) const {
        const bool isApart = first >= ranges_.size() || ranges_[first].area.start >= area.end() ||
                             ranges_[std::min(end, ranges_.size()) - 1].area.end() <= area.start;
        if (isApart || highest_[node] <= since) return std::nullopt;
        if (end - first == 1)
            return counts(ranges_[first].source) ? std::optional(ranges_[first]) : std::nullopt;
        const std::size_t middle = (first + end) / 2;
        const auto lower = find(2 * node, first, middle, area, since, counts);
        return lower ? lower : find(2 * node + 1, middle, end, area, since, counts);
    }

    std::vector<OriginMap::Range> ranges_;
    std::size_t leaves_ = 1;            ///< a power of two
    std::vector<std::size_t> highest_;  ///< one more than the highest number below each node
};

}  // namespace Strict
