#include "inspect/Diff.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <optional>
#include <vector>

#include "inspect/Json.hpp"
#include "inspect/NameDiff.hpp"
#include "inspect/Words.hpp"
#include "io/formats/InputFormats.hpp"
#include "util/Hex.hpp"
#include "util/Printable.hpp"

namespace Inspect {

namespace {

using Buffer::Area;
using Buffer::AreaList;

/// What is left of the ascending `areas` outside the ascending `holes`.
AreaList without(const AreaList& areas, const AreaList& holes) {
    AreaList rest;
    for (Area area : areas) {
        for (const Area& hole : holes) {
            if (hole.end() <= area.start) continue;
            if (hole.start >= area.end()) break;
            if (hole.start > area.start) rest.push_back({area.start, hole.start - area.start});
            const std::uint64_t start = std::min(hole.end(), area.end());
            area = {start, area.end() - start};
        }
        if (area.length != 0) rest.push_back(area);
    }
    return rest;
}

std::optional<std::uint8_t> byteAt(const Image& image, std::uint64_t address) {
    const Buffer::MemoryBuffer* const data = image.dataWith({address, 1});
    if (data == nullptr) return std::nullopt;
    const Buffer::MemoryElement element = data->viewRange(address, 1)[0];
    return element.hasValue != 0 ? std::optional(element.value) : std::nullopt;
}

/// Lines up to a limit, and the number of those beyond it.
class Lines {
public:
    explicit Lines(std::size_t most) : most_(most) {}
    bool isFull() const { return most_ != 0 && count_ >= most_; }
    void add(const std::string& line) {
        if (isFull()) {
            ++skipped_;
            return;
        }
        ++count_;
        text_ += line + "\n";
    }
    /// Counts lines that would be added to a full list, without making them.
    void skip(std::uint64_t count) { skipped_ += count; }
    std::string text() const {
        if (skipped_ == 0) return text_;
        return text_ + "... and " + countText(skipped_, "more line") +
               "; --max-lines sets how many are shown\n";
    }

private:
    std::size_t most_;
    std::size_t count_ = 0;
    std::uint64_t skipped_ = 0;
    std::string text_;
};

/// Rows of the dump, by the number of the first and the last.
struct Hunk {
    std::uint64_t first;
    std::uint64_t last;
    Area changed;         ///< from the first changed byte to the last one
    std::uint64_t bytes;  ///< that have changed
};

std::string nameOf(const Names* names, const Area& area) {
    return names == nullptr ? "" : names->of(area);
}

/// ", in main+0x14", or nothing without a name.
std::string inText(const std::string& name) {
    return name.empty() ? "" : ", in " + Util::printable(name);
}

/// ", in main+0x14", or what each image has there if that is not the same.
std::string placeText(const Diff& diff, const Area& area) {
    const std::string left = nameOf(diff.leftNames, area);
    const std::string right = nameOf(diff.rightNames, area);
    if (left == right || right.empty()) return inText(left);
    return inText(left) + (left.empty() ? inText(right) : ", now " + Util::printable(right));
}

/// Prints both images side by side.
class Dump {
public:
    Dump(const Diff& diff, const DiffStyle& style)
        : diff_(&diff), style_(&style), perRow_(style.width < widest ? 8 : 16) {}

    void appendTo(Lines& lines) const {
        for (const Hunk& hunk : hunks()) {
            lines.add("");
            lines.add(rangeText(hunk.changed) + ": " + countText(hunk.bytes, "byte") +
                      (hunk.bytes == 1 ? " differs" : " differ") + placeText(*diff_, hunk.changed));
            std::uint64_t rows = hunk.last - hunk.first + 1;
            for (; rows != 0 && !lines.isFull(); --rows) lines.add(rowText(hunk.last - rows + 1));
            lines.skip(rows);
        }
    }

private:
    using Byte = std::optional<std::uint8_t>;
    static constexpr std::size_t widest = 144;
    static constexpr std::uint64_t highestAddress = 0xFFFFFFFF;

    std::vector<Hunk> hunks() const {
        std::vector<Hunk> all;
        for (const Area& area : diff_->where.changed) {
            const std::uint64_t row = area.start / perRow_;
            const std::uint64_t first = row - std::min<std::uint64_t>(row, style_->context);
            const std::uint64_t own = (area.end() - 1) / perRow_;
            // After the last address of 32 bits there is nothing to show.
            const std::uint64_t last =
                std::min(own + style_->context, std::max(own, highestAddress / perRow_));
            if (!all.empty() && first <= all.back().last + 1) {
                all.back().last = last;
                all.back().changed.length = area.end() - all.back().changed.start;
                all.back().bytes += area.length;
            } else {
                all.push_back({first, last, area, area.length});
            }
        }
        return all;
    }

    std::string rowText(std::uint64_t row) const {
        std::vector<Byte> left;
        std::vector<Byte> right;
        for (std::size_t i = 0; i < perRow_; ++i) {
            left.push_back(byteAt(*diff_->left, row * perRow_ + i));
            right.push_back(byteAt(*diff_->right, row * perRow_ + i));
        }
        std::vector<bool> isOther;
        for (std::size_t i = 0; i < perRow_; ++i)
            isOther.push_back(left[i] != right[i] && !isIgnored(row * perRow_ + i));
        return addressText(row * perRow_) + " " + side(left, isOther, "\033[31m") + "|" +
               side(right, isOther, "\033[32m");
    }

    bool isIgnored(std::uint64_t address) const {
        const AreaList& ignored = diff_->ignored;
        const auto after = std::ranges::upper_bound(ignored, address, {}, &Area::start);
        return after != ignored.begin() && std::prev(after)->contains({address, 1});
    }

    /// Bytes that differ are in brackets, so that they show without colors too.
    std::string side(const std::vector<Byte>& own, const std::vector<bool>& differs,
                     const char* color) const {
        std::string text;
        std::string letters;
        bool isOpen = false;
        for (std::size_t i = 0; i < own.size(); ++i) {
            const bool isOther = differs[i];
            text += isOther == isOpen ? " " : isOther ? "[" : "]";
            isOpen = isOther;
            std::string digits = "--";
            if (own[i]) Util::writeHex(digits.data(), *own[i]);
            const char letter = !own[i]                            ? ' '
                                : *own[i] >= ' ' && *own[i] <= '~' ? char(*own[i])
                                                                   : '.';
            const bool isColored = isOther && style_->hasColor;
            text += isColored ? color + digits + "\033[0m" : digits;
            letters += isColored ? std::string(color) + letter + "\033[0m" : std::string(1, letter);
        }
        return text + (isOpen ? "] " : "  ") + letters;
    }

    const Diff* diff_;
    const DiffStyle* style_;
    std::size_t perRow_;
};

void appendAreas(Lines& lines, const AreaList& areas, const std::string& path, const Names* names) {
    if (areas.empty()) return;
    lines.add("");
    lines.add("only in " + Util::printable(path) + ":");
    for (const Area& area : areas)
        lines.add("  " + rangeText(area) + "  " + countText(area.length, "byte") +
                  inText(nameOf(names, area)));
}

/// Both images have names.
bool hasNames(const Diff& diff) {
    return diff.leftNames != nullptr && diff.rightNames != nullptr && !diff.leftNames->isEmpty() &&
           !diff.rightNames->isEmpty();
}

void appendNames(Lines& lines, const Diff& diff) {
    if (!hasNames(diff)) return;
    const auto table = linesOf(changesOf(diff, *diff.leftNames, *diff.rightNames));
    if (!table.empty()) lines.add("");
    for (const std::string& line : table) lines.add(line);
}

Json changeJson(const NameChange& change) {
    using Kind = Name::Kind;
    const Name& name = change.name();
    Json json{{"name", name.text},
              {"kind", name.kind == Kind::Function ? "function"
                       : name.kind == Kind::Data   ? "data"
                                                   : "label"},
              {"change", wordFor(change.what)}};
    if (change.left != nullptr) json["left"] = toJson(change.left->area);
    if (change.right != nullptr) json["right"] = toJson(change.right->area);
    return json;
}

void addNames(Json& json, const Names* left, const Names* right, const Area& area) {
    const std::string before = nameOf(left, area);
    const std::string after = nameOf(right, area);
    if (!before.empty()) json["leftName"] = before;
    if (!after.empty()) json["rightName"] = after;
}

std::string startText(const Image& image) {
    return image.startAddress ? addressText(*image.startAddress) : "none";
}

std::string headText(const char* mark, const Image& image) {
    const AreaList areas = image.areas();
    return mark + Util::printable(image.path) + "  " + formatText(image.format) + ", " +
           countText(byteCount(areas), "byte") + " in " + countText(areas.size(), "area") +
           ", start address " + startText(image) + "\n";
}

/// The written bytes of `area`, the first ones of a long one.
std::string hexOf(const Image& image, const Area& area) {
    constexpr std::uint64_t mostShown = 64;
    std::string text;
    for (std::uint64_t i = 0; i < std::min(area.length, mostShown); ++i)
        if (const auto byte = byteAt(image, area.start + i)) Util::appendHex(text, {&*byte, 1});
    return text;
}

Json sideJson(const Image& image) {
    const AreaList areas = image.areas();
    Json json{
        {"file", image.path}, {"format", formatText(image.format)}, {"bytes", byteCount(areas)}};
    if (image.startAddress) json["startAddress"] = addressText(*image.startAddress);
    return json;
}

/// The file says what the start address is, or that there is none. An S-record file without one
/// ends with a record for address 0 all the same.
bool saysStart(const Image& image) {
    using enum Io::Formats::StartAddress;
    const auto form = Io::Formats::rowOf(image.format).startAddress;
    return form == Optional || (form == Always && image.startAddress.value_or(0) != 0);
}

}  // namespace

Diff compare(const Image& left, const Image& right, const AreaList& ignored) {
    Diff diff{&left, &right, {}, false, joined(ignored, 0), nullptr, nullptr};
    // Between two of them, an image has all addresses or none.
    std::array borders{left.data.getArea().start, left.data.getArea().end(),
                       right.data.getArea().start, right.data.getArea().end()};
    std::ranges::sort(borders);
    for (std::size_t i = 0; i + 1 < borders.size(); ++i) {
        const Area range{borders[i], borders[i + 1] - borders[i]};
        if (range.length != 0)
            Buffer::appendDifferences(left.dataWith(range), right.dataWith(range), range,
                                      diff.where);
    }
    if (!diff.ignored.empty())
        for (AreaList* const areas :
             {&diff.where.changed, &diff.where.onlyLeft, &diff.where.onlyRight})
            *areas = without(*areas, diff.ignored);
    diff.hasOtherStart = saysStart(left) && saysStart(right) &&
                         left.startAddress.value_or(0) != right.startAddress.value_or(0);
    return diff;
}

std::string textOf(const Diff& diff, const DiffStyle& style) {
    if (diff.isEqual()) return "";
    std::string text = headText("--- ", *diff.left) + headText("+++ ", *diff.right);
    if (diff.hasOtherStart) text += "the start addresses differ\n";
    text += countText(byteCount(diff.where.changed), "byte") +
            (byteCount(diff.where.changed) == 1 ? " differs" : " differ") + " in " +
            countText(diff.where.changed.size(), "range") + ", " +
            countText(byteCount(diff.where.onlyLeft), "byte") + " only in " +
            Util::printable(diff.left->path) + ", " +
            countText(byteCount(diff.where.onlyRight), "byte") + " only in " +
            Util::printable(diff.right->path) + "\n";
    Lines lines(style.mostLines);
    appendNames(lines, diff);
    appendAreas(lines, diff.where.onlyLeft, diff.left->path, diff.leftNames);
    appendAreas(lines, diff.where.onlyRight, diff.right->path, diff.rightNames);
    Dump(diff, style).appendTo(lines);
    return text + lines.text();
}

std::string jsonOf(const Diff& diff) {
    Json json{{"equal", diff.isEqual()},
              {"left", sideJson(*diff.left)},
              {"right", sideJson(*diff.right)},
              {"changedBytes", byteCount(diff.where.changed)}};
    json["changed"] = Json::array();
    for (const Area& area : diff.where.changed) {
        Json entry = toJson(area);
        entry["left"] = hexOf(*diff.left, area);
        entry["right"] = hexOf(*diff.right, area);
        addNames(entry, diff.leftNames, diff.rightNames, area);
        json["changed"].push_back(std::move(entry));
    }
    json["onlyLeft"] = toJson(diff.where.onlyLeft);
    json["onlyRight"] = toJson(diff.where.onlyRight);
    if (hasNames(diff)) {
        json["names"] = Json::array();
        for (const NameChange& change : changesOf(diff, *diff.leftNames, *diff.rightNames))
            json["names"].push_back(changeJson(change));
    }
    return dump(json);
}

}  // namespace Inspect
