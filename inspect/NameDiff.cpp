#include "inspect/NameDiff.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <unordered_map>

#include "inspect/Words.hpp"
#include "util/Printable.hpp"

namespace Inspect {

namespace {

using Buffer::Area;
using Buffer::AreaList;
using What = NameChange::What;

/// Any of the ascending `areas` has an address of `area`.
bool isTouched(const AreaList& areas, const Area& area) {
    const auto first = std::ranges::partition_point(
        areas, [&area](const Area& one) { return one.end() <= area.start; });
    return first != areas.end() && first->start < area.end();
}

bool isSameElement(const Buffer::MemoryElement& one, const Buffer::MemoryElement& other) {
    return one.hasValue == other.hasValue && (one.hasValue == 0 || one.value == other.value);
}

/// Two areas of one length have the same written bytes.
bool hasSameBytes(const Diff& diff, const Area& left, const Area& right) {
    if (left == right) {
        const Buffer::Differences& where = diff.where;
        return !isTouched(where.changed, left) && !isTouched(where.onlyLeft, left) &&
               !isTouched(where.onlyRight, left);
    }
    const auto* const leftData = diff.left->dataWith(left);
    const auto* const rightData = diff.right->dataWith(right);
    if (leftData == nullptr || rightData == nullptr) return leftData == rightData;
    const auto lefts = leftData->viewRange(left.start, left.length);
    const auto rights = rightData->viewRange(right.start, right.length);
    for (std::size_t i = 0; i < lefts.size(); ++i)
        if (!isSameElement(lefts[i], rights[i])) return false;
    return true;
}

std::uint64_t growth(const NameChange& change) {
    const std::uint64_t left = change.leftSize();
    const std::uint64_t right = change.rightSize();
    return left < right ? right - left : left - right;
}

/// Right-aligned in a column.
std::string column(const std::string& text) {
    constexpr std::size_t width = 10;
    return std::string(width - std::min(width - 1, text.size()), ' ') + text;
}

std::string lineOf(const NameChange& change) {
    const auto size = [](const Name* name) {
        return name == nullptr ? std::string("-") : grouped(name->area.length);
    };
    const bool isSmaller = change.rightSize() < change.leftSize();
    const std::string difference =
        growth(change) == 0 ? std::string(1, '0')
                            : std::string(1, isSmaller ? '-' : '+').append(grouped(growth(change)));
    std::string line = column(size(change.left)) + column(size(change.right)) + column(difference) +
                       "  " + Util::printable(change.name().text);
    if (change.what != What::Changed) line += std::string("  ") + wordFor(change.what);
    return line;
}

}  // namespace

const char* wordFor(What what) {
    constexpr std::array words{"changed", "added", "removed", "moved"};
    return words.at(static_cast<std::size_t>(what));
}

std::vector<NameChange> changesOf(const Diff& diff, const Names& left, const Names& right) {
    std::unordered_map<std::string_view, std::vector<const Name*>> waiting;
    // The first one comes last, where it is taken off.
    for (std::size_t i = right.all().size(); i-- != 0;)
        waiting[right.all()[i].text].push_back(&right.all()[i]);
    std::vector<NameChange> changes;
    for (const Name& name : left.all()) {
        const auto found = waiting.find(name.text);
        if (found == waiting.end() || found->second.empty()) {
            changes.push_back({What::Removed, &name, nullptr});
            continue;
        }
        const Name& other = *found->second.back();
        found->second.pop_back();
        const bool isSame =
            name.area.length == other.area.length && hasSameBytes(diff, name.area, other.area);
        if (!isSame)
            changes.push_back({What::Changed, &name, &other});
        else if (name.area.start != other.area.start)
            changes.push_back({What::Moved, &name, &other});
    }
    for (const auto& [text, names] : waiting)
        for (const Name* const name : names) changes.push_back({What::Added, nullptr, name});
    std::ranges::sort(changes, [](const NameChange& one, const NameChange& other) {
        const bool hasMoved = one.what == What::Moved;
        if (hasMoved != (other.what == What::Moved)) return !hasMoved;
        if (growth(one) != growth(other)) return growth(one) > growth(other);
        if (one.name().area.length != other.name().area.length)
            return one.name().area.length > other.name().area.length;
        if (one.name().text != other.name().text) return one.name().text < other.name().text;
        return one.name().area.start < other.name().area.start;
    });
    return changes;
}

std::vector<std::string> linesOf(const std::vector<NameChange>& changes) {
    std::vector<std::string> lines;
    const auto moved = static_cast<std::uint64_t>(std::ranges::count(
        changes, What::Moved, [](const NameChange& change) { return change.what; }));
    if (moved != changes.size())
        lines.push_back(column("old") + column("new") + column("bytes") + "  name");
    for (const NameChange& change : changes)
        if (change.what != What::Moved) lines.push_back(lineOf(change));
    if (moved != 0) lines.push_back(countText(moved, "name") + " moved with the same bytes");
    return lines;
}

}  // namespace Inspect
