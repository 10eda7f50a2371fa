#include "inspect/Map.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <set>
#include <span>
#include <string_view>
#include <utility>

#include "inspect/Words.hpp"
#include "util/Printable.hpp"

namespace Inspect {

namespace {

using Buffer::Area;
using Buffer::AreaList;

/// How a kind is drawn.
struct Look {
    const char* block;
    const char* ascii;
    const char* word;
    const char* color;
};

constexpr std::array looks{
    Look{"·", ".", "gap", "none"},
    Look{"░", "-", "filler", "#c9a227"},
    Look{"█", "#", "data", "#2f6fab"},
    Look{"◆", "V", "value", "#b3261e"},
};
/// A cell that has data and gaps, or data and fillers.
constexpr Look partLook{"▒", "+", "data in part", ""};

const Look& lookOf(MapKind kind) {
    return looks[static_cast<std::size_t>(kind)];
}

/// Gaps from here on may cut the map.
constexpr std::uint64_t shortestCut = std::uint64_t{1} << 16U;
/// The part of what is drawn on one scale that a cut takes out of it at least.
constexpr std::uint64_t leastPart = 8;

/// Appends what the ascending `areas` span. A gap in them that is longer than all of them together
/// cuts it, unless it is one of many: cuts would hide how such areas lie to each other.
void appendPanels(std::span<const Area> areas, AreaList& panels) {
    const Area span{areas.front().start, areas.back().end() - areas.front().start};
    std::uint64_t bytes = areas.front().length;
    std::uint64_t longest = 0;
    std::size_t cut = 0;
    for (std::size_t i = 1; i < areas.size(); ++i) {
        bytes += areas[i].length;
        const std::uint64_t gap = areas[i].start - areas[i - 1].end();
        if (gap <= longest) continue;
        longest = gap;
        cut = i;
    }
    if (longest < shortestCut || longest < bytes || longest < span.length / leastPart) {
        panels.push_back(span);
        return;
    }
    appendPanels(areas.first(cut), panels);
    appendPanels(areas.subspan(cut), panels);
}

/// The ranges that any row has, on one scale each.
AreaList panelsOf(const std::vector<MapRow>& rows) {
    AreaList all;
    for (const MapRow& row : rows)
        for (const MapRange& range : row.ranges) all.push_back(range.area);
    AreaList panels;
    if (!all.empty()) appendPanels(joined(std::move(all), shortestCut - 1), panels);
    return panels;
}

/// How many bytes of each kind a cell has.
struct Cell {
    std::array<std::uint64_t, looks.size()> bytes{};
    Area filled{};  ///< from the first of them to the last one, in the panel

    void add(MapKind kind, const Area& area) {
        bytes[static_cast<std::size_t>(kind)] += area.length;
        if (filled.length == 0) filled.start = area.start;
        filled.length = area.end() - filled.start;
    }
    std::uint64_t of(MapKind kind) const { return bytes[static_cast<std::size_t>(kind)]; }
};

/// Divides a panel into cells of equal size, the last ones shorter by a byte.
std::vector<Cell> cellsOf(const MapRow& row, const Area& panel, std::size_t count) {
    std::vector<Cell> cells(count);
    // Cell i begins at i * length / count: the remainder is spread, and nothing overflows.
    const std::uint64_t whole = panel.length / count;
    const std::uint64_t rest = panel.length % count;
    const auto beginOf = [&](std::uint64_t cell) { return cell * whole + cell * rest / count; };
    for (const MapRange& range : row.ranges) {
        if (range.area.end() <= panel.start || range.area.start >= panel.end()) continue;
        std::uint64_t at = std::max(range.area.start, panel.start) - panel.start;
        const std::uint64_t end = range.area.end() - panel.start;
        // The cell before the one of this address at the latest: a quotient may be rounded up.
        const double position = static_cast<double>(at) / static_cast<double>(panel.length);
        auto cell = static_cast<std::uint64_t>(position * static_cast<double>(count));
        cell -= std::min<std::uint64_t>(cell, 1);
        for (; cell < count && at < end; ++cell) {
            const std::uint64_t next = cell + 1 == count ? panel.length : beginOf(cell + 1);
            if (next <= at) continue;
            const std::uint64_t taken = std::min(next, end) - at;
            cells[static_cast<std::size_t>(cell)].add(range.kind, {at, taken});
            at += taken;
        }
    }
    return cells;
}

/// Whether a cell is full of what it has most of.
bool isPartial(const Cell& cell, std::uint64_t size) {
    return cell.of(MapKind::Data) != 0 && cell.of(MapKind::Data) < size;
}

const Look& lookOf(const Cell& cell, std::uint64_t size) {
    if (cell.of(MapKind::Value) != 0) return lookOf(MapKind::Value);
    if (isPartial(cell, size)) return partLook;
    if (cell.of(MapKind::Data) != 0) return lookOf(MapKind::Data);
    return cell.of(MapKind::Filler) != 0 ? lookOf(MapKind::Filler) : lookOf(MapKind::Gap);
}

std::uint64_t bytesOf(const MapRow& row, MapKind kind) {
    std::uint64_t bytes = 0;
    for (const MapRange& range : row.ranges)
        if (range.kind == kind) bytes += range.area.length;
    return bytes;
}

/// "16.0 KiB of data in 2 areas, 3 bytes of filler".
std::string summary(const MapRow& row) {
    std::uint64_t areas = 0;
    std::uint64_t end = 0;
    for (const MapRange& range : row.ranges) {
        if (range.kind == MapKind::Filler) continue;
        areas += areas == 0 || range.area.start != end ? 1U : 0U;
        end = range.area.end();
    }
    const std::uint64_t data = bytesOf(row, MapKind::Data) + bytesOf(row, MapKind::Value);
    std::string text = sizeText(data) + " of data in " + countText(areas, "area");
    for (const MapKind kind : {MapKind::Filler, MapKind::Value})
        if (const std::uint64_t bytes = bytesOf(row, kind))
            text += ", " + sizeText(bytes) +
                    (kind == MapKind::Filler ? " of filler" : " of values in it");
    return text;
}

/// What the ranges of a row begin and end with.
std::string namedRanges(const MapRow& row) {
    constexpr std::size_t mostShown = 20;
    std::string text;
    std::size_t count = 0;
    for (const MapRange& range : row.ranges) {
        const std::string names = row.names.of(range.area);
        if (names.empty() || ++count > mostShown) continue;
        text.append("  ").append(rangeText(range.area)).append("  ");
        text.append(Util::printable(names)).append("\n");
    }
    if (count > mostShown)
        text.append("  and ").append(countText(count - mostShown, "more area")).append("\n");
    if (text.empty()) return text;
    return std::string("\n").append(Util::printable(row.label)).append("\n").append(text);
}

/// The number of cells of a panel of up to `most`; none is smaller than a byte.
std::size_t cellCount(const Area& panel, std::size_t most) {
    return static_cast<std::size_t>(std::min<std::uint64_t>(most, panel.length));
}

/// Draws panels with characters.
class TextDrawing {
public:
    /// @param labels  columns for the labels of the rows
    /// @param bar     columns for the cells
    TextDrawing(std::size_t labels, std::size_t bar, bool isUnicode)
        : labels_(labels), bar_(bar), isUnicode_(isUnicode) {}

    std::string panel(const Area& panel, const std::vector<MapRow>& rows) {
        std::string text(labels_ + 2, ' ');
        text += rangeText(panel) + ", " + sizeText(panel.length) + "\n";
        for (const MapRow& row : rows) text += rowText(panel, row);
        return text;
    }

    /// What the signs of all panels mean.
    std::string legend() const {
        std::string text;
        for (const Look* const look : {&lookOf(MapKind::Data), &partLook, &lookOf(MapKind::Value),
                                       &lookOf(MapKind::Filler), &lookOf(MapKind::Gap)})
            if (used_.contains(look))
                text.append("  ").append(sign(*look)).append(" ").append(look->word);
        return text + "\n";
    }

private:
    const char* sign(const Look& look) const { return isUnicode_ ? look.block : look.ascii; }

    std::string rowText(const Area& panel, const MapRow& row) {
        std::string label(Util::firstCharacters(Util::printable(row.label), labels_));
        label.append(labels_ - Util::characters(label), ' ');
        std::string text = " ";
        text.append(label).append(isUnicode_ ? "▕" : "|");
        const std::size_t count = cellCount(panel, bar_);
        for (const Cell& cell : cellsOf(row, panel, count)) {
            const Look& look = lookOf(cell, panel.length / count);
            used_.insert(&look);
            text += sign(look);
        }
        return text + (isUnicode_ ? "▏\n" : "|\n");
    }

    std::size_t labels_;
    std::size_t bar_;
    bool isUnicode_;
    std::set<const Look*> used_;
};

/// Draws panels as SVG, from top to bottom.
class SvgDrawing {
public:
    void addLine(const std::string& words) {
        addText(words, left, y_);
        y_ += 20;
    }

    void addPanel(const Area& panel, const std::vector<MapRow>& rows) {
        y_ += 20;
        addText(rangeText(panel) + ", " + sizeText(panel.length), bars, y_);
        y_ += 8;
        for (const MapRow& row : rows) addRow(panel, row);
        addScale(panel);
    }

    void addLegend() {
        y_ += 24;
        std::size_t x = left;
        for (const Look* const look : {&lookOf(MapKind::Data), &partLook, &lookOf(MapKind::Value),
                                       &lookOf(MapKind::Filler), &lookOf(MapKind::Gap)}) {
            addBox(*look, x, y_ - 12, 14, 14);
            addText(look->word, x + 20, y_);
            x += 130;
        }
    }

    std::string document() const {
        const std::string size = std::to_string(bars + width + lastLabel);
        const std::string height = std::to_string(y_ + 20);
        std::string colors;
        for (const Look& look : looks)
            if (&look != &lookOf(MapKind::Gap))
                colors.append(".")
                    .append(look.word)
                    .append("{fill:")
                    .append(look.color)
                    .append("}");
        return "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " + size + " " + height +
               "\" width=\"" + size + "\" height=\"" + height + "\" role=\"img\">\n<style>" +
               colors +
               ".part{fill:#7ea6cc}.gap{fill:#eee;stroke:#888}path{stroke:#888}"
               "text{font:13px sans-serif;fill:#222}</style>\n<rect width=\"100%\" "
               "height=\"100%\" fill=\"#fff\"/>\n" +
               body_ + "</svg>\n";
    }

private:
    static constexpr std::size_t width = 1000;
    static constexpr std::size_t rowHeight = 26;
    static constexpr std::size_t boxHeight = rowHeight - 6;
    static constexpr std::size_t left = 20;
    static constexpr std::size_t labels = 200;
    static constexpr std::size_t bars = left + labels;
    static constexpr std::size_t lastLabel = 100;  ///< of the scale, right of the bars at most

    void addText(std::string_view words, std::size_t x, std::size_t y) {
        body_ += "<text x=\"" + std::to_string(x) + "\" y=\"" + std::to_string(y) + "\">" +
                 Util::printableMarkup(words) + "</text>\n";
    }

    /// The end of a name says more than the folders before it.
    static std::string labelOf(const MapRow& row) {
        constexpr std::size_t most = 26;
        constexpr std::string_view cut = "...";
        std::string label = Util::printable(row.label);
        if (Util::characters(label) <= most) return label;
        return std::string(cut).append(Util::lastCharacters(label, most - cut.size()));
    }

    /// Round addresses below the bars of a panel, six or less.
    void addScale(const Area& panel) {
        constexpr std::uint64_t fewest = 6;
        const std::uint64_t step = std::bit_ceil((panel.length + fewest - 1) / fewest);
        std::uint64_t offset = (step - panel.start % step) % step;
        for (; offset < panel.length; offset += step) {
            const double part = static_cast<double>(offset) / static_cast<double>(panel.length);
            const std::size_t x = bars + static_cast<std::size_t>(part * width);
            body_ += "<path d=\"M" + std::to_string(x) + " " + std::to_string(y_ - 4) + "v6\"/>\n";
            addText(addressText(panel.start + offset), x, y_ + 14);
            if (panel.length - offset <= step) break;
        }
        y_ += 20;
    }

    /// @param title  shown to who points at the box; empty for none
    void addBox(const Look& look, std::size_t x, std::size_t y, std::size_t boxWidth,
                std::size_t height, const std::string& title = {}) {
        body_ += "<rect class=\"" + std::string(&look == &partLook ? "part" : look.word) +
                 "\" x=\"" + std::to_string(x) + "\" y=\"" + std::to_string(y) + "\" width=\"" +
                 std::to_string(boxWidth) + "\" height=\"" + std::to_string(height) + "\"";
        body_ += title.empty() ? "/>\n"
                               : "><title>" + Util::printableMarkup(title) + "</title></rect>\n";
    }

    /// Where the names of a row are, or nothing.
    static std::string titleOf(const Names& names, const Area& area) {
        const std::string text = names.of(area);
        return text.empty() ? "" : rangeText(area) + ": " + text;
    }

    void addRow(const Area& panel, const MapRow& row) {
        body_ += "<g><title>" + Util::printableMarkup(row.label) + "</title>";
        addText(labelOf(row), left, y_ + 15);
        addBox(lookOf(MapKind::Gap), bars, y_, width, boxHeight);
        // Cells that look alike and have one name become one rectangle, so that no map has more
        // than a thousand.
        const std::size_t count = cellCount(panel, width);
        const auto cells = cellsOf(row, panel, count);
        const auto lookAt = [&](std::size_t i) { return &lookOf(cells[i], panel.length / count); };
        const auto nameAt = [&](std::size_t i) {
            return row.names.find(panel.start + cells[i].filled.start);
        };
        for (std::size_t i = 0; i < count;) {
            const Look* const look = lookAt(i);
            std::size_t next = i + 1;
            while (next < count && lookAt(next) == look && nameAt(next) == nameAt(i)) ++next;
            const Area filled{panel.start + cells[i].filled.start,
                              cells[next - 1].filled.end() - cells[i].filled.start};
            if (look != &lookOf(MapKind::Gap))
                addBox(*look, bars + i * width / count, y_,
                       next * width / count - i * width / count, boxHeight,
                       titleOf(row.names, filled));
            i = next;
        }
        body_ += "</g>\n";
        y_ += rowHeight;
    }

    std::string body_;
    std::size_t y_ = 30;
};

}  // namespace

Map::Map(std::vector<MapRow> rows) : rows_(std::move(rows)), panels_(panelsOf(rows_)) {}

std::string Map::text(std::size_t width, bool isUnicode) const {
    constexpr std::size_t narrowest = 24;
    const std::size_t room = std::max(width, narrowest) - 4;
    std::string text;
    std::size_t longest = 0;
    for (const MapRow& row : rows_) {
        const std::string label = Util::printable(row.label);
        text += label + ": " + summary(row) + "\n";
        longest = std::max(longest, Util::characters(label));
    }
    // The labels are needed only where there are several rows, and give way to the bar.
    const std::size_t labels = rows_.size() < 2 ? 0 : std::min(longest, room / 3);
    TextDrawing drawing(labels, room - labels, isUnicode);
    std::uint64_t end = 0;
    for (const Area& panel : panels_) {
        if (end != 0) text += "\n  nothing for " + sizeText(panel.start - end);
        end = panel.end();
        text += '\n';
        text += drawing.panel(panel, rows_);
    }
    if (!panels_.empty()) text.append("\n").append(drawing.legend());
    for (const MapRow& row : rows_) text += namedRanges(row);
    return text;
}

std::string Map::svg() const {
    SvgDrawing drawing;
    for (const MapRow& row : rows_) drawing.addLine(row.label + ": " + summary(row));
    for (const Area& panel : panels_) drawing.addPanel(panel, rows_);
    drawing.addLegend();
    return drawing.document();
}

MapRow rowOf(const Image& image) {
    MapRow row{image.path, {}};
    for (const Area& area : image.areas()) row.ranges.push_back({area, MapKind::Data});
    return row;
}

}  // namespace Inspect
