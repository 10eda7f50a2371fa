#include "inspect/Names.hpp"

#include <algorithm>

#include <cstddef>
#include <iterator>
#include <memory>
#include <utility>

#include "inspect/Image.hpp"
#include "inspect/LinkerMap.hpp"
#include "inspect/Words.hpp"
#include "io/InFile.hpp"
#include "io/import/elf/ElfInFile.hpp"
#include "io/import/elf/SymbolTable.hpp"

namespace Inspect {

namespace {

using Buffer::Area;
using Buffer::AreaList;
using Io::Import::ElfFile;
using Io::Import::ElfSegment;

/// "+0x14", or nothing for 0.
std::string offsetText(std::uint64_t offset) {
    return offset == 0 ? std::string() : std::string(1, '+').append(hexText(offset));
}

/// Where the stretch of the ascending `areas` ends that has the address; the address itself if none
/// has it.
std::uint64_t endAround(const AreaList& areas, std::uint64_t address) {
    const auto after = std::ranges::upper_bound(areas, address, {}, &Area::start);
    if (after == areas.begin()) return address;
    return std::max(std::prev(after)->end(), address);
}

/// The names of the symbols that lie in what the file loads, at the addresses that they are loaded
/// to.
Names namesOf(const ElfFile& file) {
    std::vector<const ElfSegment*> segments;
    AreaList loaded;
    for (const ElfSegment& segment : file.segments()) {
        segments.push_back(&segment);
        loaded.push_back({segment.address, segment.length});
    }
    const auto start = [](const ElfSegment* segment) { return segment->virtualAddress; };
    std::ranges::stable_sort(segments, {}, start);
    std::vector<Name> names;
    for (const Io::Import::Symbol& symbol : file.symbols()) {
        // Such as the numbers of registers.
        if (symbol.isAbsolute) continue;
        const auto after = std::ranges::upper_bound(segments, symbol.address, {}, start);
        if (after == segments.begin()) continue;
        const ElfSegment& segment = **std::prev(after);
        const std::uint64_t offset = symbol.address - segment.virtualAddress;
        if (offset >= segment.length) continue;
        names.push_back({{segment.address + offset, std::min(symbol.size, segment.length - offset)},
                         Io::Import::demangled(symbol.name),
                         symbol.kind});
    }
    return {std::move(names), loaded};
}

}  // namespace

Names::Names(std::vector<Name> names, const AreaList& loaded) {
    const AreaList stretches = joined(loaded, 0);
    // A label is what is left where nothing else is.
    const auto comesBefore = [](const Name& one, const Name& other) {
        if (one.area.start != other.area.start) return one.area.start < other.area.start;
        return one.area.length > other.area.length;
    };
    std::ranges::stable_sort(names, comesBefore);
    for (Name& name : names) {
        const std::uint64_t start = name.area.start;
        if (!names_.empty()) {
            Area& last = names_.back().area;
            if (last.start == start || start - last.start < last.length) continue;
            if (last.length == 0)
                last.length = std::min(endAround(stretches, last.start), start) - last.start;
            if (last.length == 0) names_.pop_back();
        }
        names_.push_back(std::move(name));
    }
    if (names_.empty() || names_.back().area.length != 0) return;
    Area& last = names_.back().area;
    last.length = endAround(stretches, last.start) - last.start;
    if (last.length == 0) names_.pop_back();
}

const Name* Names::find(std::uint64_t address) const {
    const auto start = [](const Name& name) { return name.area.start; };
    const auto after = std::ranges::upper_bound(names_, address, {}, start);
    if (after == names_.begin()) return nullptr;
    const Name& name = *std::prev(after);
    return address - name.area.start < name.area.length ? &name : nullptr;
}

std::string Names::at(std::uint64_t address) const {
    const Name* const name = find(address);
    return name == nullptr ? "" : name->text + offsetText(address - name->area.start);
}

std::string Names::of(const Area& area) const {
    if (area.length == 0) return "";
    const Name* const first = find(area.start);
    const Name* const last = find(area.end() - 1);
    std::string text = at(area.start);
    if (area.length == 1) return text;
    const bool isOne = first == last && first != nullptr;
    return fromTo(text,
                  isOne ? offsetText(area.end() - 1 - first->area.start) : at(area.end() - 1));
}

std::string fromTo(const std::string& first, const std::string& last) {
    return first.empty() || last.empty() ? first + last : first + " to " + last;
}

Names namesIn(const std::string& path, std::uint32_t addressUnit) {
    Platform::InputFile file = Io::openInput(path);
    std::string head(4, '\0');
    head.resize(file.readAt(0, head));
    if (Io::Import::ElfInFile::looksLike(head))
        return namesOf(ElfFile(path, std::move(file), addressUnit));
    return namesOfLinkerMap(file);
}

}  // namespace Inspect
