#include "strict/meaning/LatestChange.hpp"

#include <algorithm>
#include <bit>

namespace Strict {

LatestChange::LatestChange(const OriginMap& changes)
    : ranges_(changes.ranges().begin(), changes.ranges().end()) {
    leaves_ = std::bit_ceil(std::max<std::size_t>(ranges_.size(), 1));
    highest_.assign(2 * leaves_, 0);
    for (std::size_t i = 0; i < ranges_.size(); ++i) highest_[leaves_ + i] = ranges_[i].source + 1;
    for (std::size_t node = leaves_ - 1; node > 0; --node)
        highest_[node] = std::max(highest_[2 * node], highest_[2 * node + 1]);
}

}  // namespace Strict
