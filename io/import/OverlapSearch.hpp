#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "buffer/Area.hpp"
#include "buffer/Overlap.hpp"
#include "io/import/ParsedData.hpp"

namespace Io::Import {

/// A range that a file gives twice.
struct RecordOverlap {
    Buffer::Area area;
    std::size_t earlier;  ///< where its first byte is among all bytes of the file, the first time
    std::size_t later;    ///< the same for the second time
    /// Bytes from the start of the area to the first one with two values; nothing if there is none.
    std::optional<std::size_t> difference;
};

/// Finds the ranges that a file gives more than once, in the order in which it gives them again. A
/// run is compared with what counts before it.
class OverlapSearch {
public:
    /// @param most  ranges of equal and of different bytes that are kept; of the others only the
    ///              number is
    OverlapSearch(const ParsedData& data, std::size_t most);

    struct Found {
        std::vector<RecordOverlap> kept;
        std::uint64_t count = 0;
    };
    const Found& equal() const { return equal_; }
    const Found& different() const { return different_; }

private:
    using Run = ParsedData::Run;

    void add(const Run& run);
    void compare(const Buffer::Area& area, std::size_t earlier, std::size_t later);

    const ParsedData* data_;
    std::size_t most_;
    std::map<std::uint64_t, Run>
        counting_;  ///< the parts of runs that count so far, by their start
    Found equal_;
    Found different_;
};

/// The first range that `data` gives a second time, with other bytes if `isDifferent`.
std::optional<Buffer::Overlap> findOverlap(const ParsedData& data, bool isDifferent);

}  // namespace Io::Import
