#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "buffer/Area.hpp"
#include "strict/record/RangeList.hpp"

namespace Strict {

/// Which source gave each address of an image. Addresses are kept as ranges, so that a map costs
/// what its ranges cost, however long they are.
class OriginMap {
public:
    using Range = SourcedRange;

    OriginMap() = default;

    /// A map of `ranges`. Of two that have an address, the one with the higher number of a source
    /// counts.
    explicit OriginMap(std::vector<Range> ranges);

    /// Lets all addresses of `area` come from `source`. An area of length 0 changes nothing.
    void set(const Buffer::Area& area, std::size_t source) { set({area, source, 0}); }
    void set(const Range& range);

    /// Forgets the addresses of `area`.
    void erase(const Buffer::Area& area);

    /// Takes over what `other` knows of the addresses of `area`; nothing of one of length 0.
    void lay(const OriginMap& other, const Buffer::Area& area);

    /// Moves all addresses by `distance`, modulo 2^64.
    void move(std::uint64_t distance);

    /// The range that holds `address`, or null.
    const Range* find(std::uint64_t address) const;

    const RangeList& ranges() const { return ranges_; }

    bool empty() const { return ranges_.empty(); }

    /// Addresses of all ranges.
    std::uint64_t size() const;

private:
    RangeList::Iterator firstFrom(RangeList::Iterator near, const Buffer::Area& area) const;
    RangeList::Iterator insert(RangeList::Iterator next, const Range& range);
    RangeList::Iterator cleared(const Buffer::Area& area, RangeList::Iterator at);

    RangeList ranges_;
};

/// The parts of `area`, ascending, of which the map knows no address.
Buffer::AreaList uncovered(const Buffer::Area& area, const OriginMap& map);

}  // namespace Strict
