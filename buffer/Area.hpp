#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

namespace Buffer {

/// A range of addresses: `start` up to `start + length - 1`, in bytes. All arithmetic is modulo
/// 2^64.
struct Area {
    std::uint64_t start = 0;
    std::uint64_t length = 0;

    bool operator==(const Area&) const = default;

    /// The address one past the last one.
    constexpr std::uint64_t end() const { return start + length; }

    /// `other` lies in this area as a whole. An area of length 0 does so up to `end()`, inclusive.
    /// This area must not wrap.
    constexpr bool contains(const Area& other) const {
        return other.start >= start && other.start <= end() && other.length <= end() - other.start;
    }

    /// The part of this area that lies in `range`, or nothing if the last address of one of them is
    /// below the start of the other.
    ///
    /// The last address of an area of length 0 is the one before its start, so an area of length 0
    /// at address 0 ends with the highest address there is. Such an area has a part in every
    /// `range`, whose length is 0 or wraps to a number that no image has room for.
    constexpr std::optional<Area> clippedTo(const Area& range) const {
        if (end() - 1 < range.start || range.end() - 1 < start) return std::nullopt;
        const std::uint64_t first = std::max(start, range.start);
        return Area{first, std::min(end(), range.end()) - first};
    }
};

/// Areas in the order in which a script or a file names them. The order matters: a later area
/// overwrites what an earlier one wrote at the same address.
using AreaList = std::vector<Area>;

}  // namespace Buffer
