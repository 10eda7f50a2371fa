#pragma once

#include <cstdint>
#include <vector>

#include "buffer/MemoryBuffer.hpp"

namespace Buffer {

/// What counts where two sources of an image have a byte for one address.
enum class OverlapRule : std::uint8_t {
    NotSet,  ///< the later source replaces the earlier one, its unwritten addresses included
    Last,    ///< the byte that was written last
    First,   ///< the byte that was written first
    Same,    ///< either, as both must be equal
    Error    ///< none: no address may be written twice
};

/// Addresses that both of two sources have written.
struct Overlap {
    Area area;
    std::uint64_t differences = 0;      ///< addresses with different bytes
    std::uint64_t firstDifference = 0;  ///< the lowest of them, if there is any
    std::uint8_t earlier = 0;           ///< the byte of the first source at that address
    std::uint8_t later = 0;             ///< the byte of the second source at that address
    bool operator==(const Overlap&) const = default;
};

/// The ranges, ascending and as long as possible, that both images have written.
std::vector<Overlap> overlaps(const MemoryBuffer& earlier, const MemoryBuffer& later);

/// The ranges, ascending and as long as possible, that `earlier` has written and `later` has, but
/// has not written.
AreaList wipedAreas(const MemoryBuffer& earlier, const MemoryBuffer& later);

/// The ranges of `area`, ascending and as long as possible, that `image` has and has written.
AreaList writtenAreas(const MemoryBuffer& image, const Area& area);

}  // namespace Buffer
