#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "buffer/Area.hpp"
#include "inspect/Image.hpp"
#include "inspect/Names.hpp"

namespace Inspect {

/// What an address of a map holds. A higher one is shown where a cell has several.
enum class MapKind : std::uint8_t {
    Gap,
    Filler,  ///< nothing was written, a filler was laid
    Data,
    Value  ///< written by a statement of the script
};

/// A range of one kind.
struct MapRange {
    Buffer::Area area;
    MapKind kind;
};

/// An image in a map: its ranges, ascending.
struct MapRow {
    std::string label;
    std::vector<MapRange> ranges;
    Names names = {};  ///< of what is at its addresses, if anybody knows
};

/// A map of images beside each other: the same address is in the same column.
class Map {
public:
    explicit Map(std::vector<MapRow> rows);

    /// Lines for a terminal of `width` columns. What ranges begin and end with follows the map, of
    /// the first ranges of a row that have names.
    ///
    /// @param isUnicode  whether it shows block characters; others get ASCII
    std::string text(std::size_t width, bool isUnicode) const;

    /// A picture in the format SVG. Where a row has names, a box for each of them shows it to who
    /// points at it.
    std::string svg() const;

    /// The ranges of addresses that are shown, each with its own scale: where no image has anything
    /// over a long distance, the map is cut.
    const Buffer::AreaList& panels() const { return panels_; }

private:
    std::vector<MapRow> rows_;
    Buffer::AreaList panels_;
};

/// The data of a file as a row, without names.
MapRow rowOf(const Image& image);

}  // namespace Inspect
