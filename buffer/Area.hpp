#pragma once

#include <cstdint>
#include <vector>

namespace Buffer {

/// A range of addresses: `start` up to `start + length - 1`, in bytes.
struct Area {
    std::uint64_t start = 0;
    std::uint64_t length = 0;

    bool operator==(const Area&) const = default;
};

/// Areas in the order in which a script or a file names them. The order matters: a later area
/// overwrites what an earlier one wrote at the same address.
using AreaList = std::vector<Area>;

}  // namespace Buffer
