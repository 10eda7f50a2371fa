#include "strict/record/Provenance.hpp"

#include <algorithm>
#include <exception>
#include <span>
#include <utility>

#include "buffer/Overlap.hpp"
#include "facts/Listener.hpp"
#include "inspect/Image.hpp"
#include "inspect/LineRuns.hpp"
#include "inspect/Words.hpp"
#include "util/Hex.hpp"

namespace Strict {

namespace {

using namespace Parser::WrapperLib;
using Buffer::MemoryBuffer;
using Buffer::Overlap;
using Buffer::OverlapRule;
using Io::Import::TessaronImportApi;
using Parser::Role;

/// Ranges that are reported one by one; of the others only the number is.
constexpr std::size_t mostReported = 20;

std::string range(const Area& area) {
    return (area.length == 1 ? "at " : "from ") + Inspect::rangeText(area);
}

/// "from 0x00000010 to 0x0000001F, at 0x00000030 (main+0x4) and in 2 more ranges"
std::string list(const AreaList& areas, const Inspect::Names& names = {}) {
    constexpr std::size_t mostListed = 3;
    std::string text;
    for (std::size_t i = 0; i < std::min(areas.size(), mostListed); ++i) {
        text += (text.empty() ? "" : ", ") + range(areas[i]);
        const std::string name = names.of(areas[i]);
        if (!name.empty()) text += " (" + name + ")";
    }
    if (areas.size() > mostListed)
        text += " and in " + Inspect::countText(areas.size() - mostListed, "more range");
    return text;
}

/// The first addresses at which the bytes differ, with both of them.
std::string firstDifferences(const MemoryBuffer& earlier, const MemoryBuffer& later,
                             const Overlap& overlap) {
    constexpr std::size_t mostShown = 3;
    const std::uint64_t length = overlap.area.end() - overlap.firstDifference;
    const Buffer::ElementView one = earlier.viewRange(overlap.firstDifference, length);
    const Buffer::ElementView other = later.viewRange(overlap.firstDifference, length);
    std::string text;
    std::size_t shown = 0;
    for (std::size_t i = 0; i < one.size() && shown < mostShown; ++i) {
        if (one.values()[i] == other.values()[i]) continue;
        text += (shown++ == 0 ? "" : ", ") + Inspect::addressText(overlap.firstDifference + i) +
                " has " + Util::hexByte(one.values()[i]) + " and then " +
                Util::hexByte(other.values()[i]);
    }
    return text;
}

/// A line of a file, or for 0 all of it.
Place placeIn(const std::string& file, std::uint64_t line) {
    return {file, static_cast<std::size_t>(line), 0, "", 0, 0};
}

/// Where a byte comes from: its place, and the name of what is there.
Note noteOn(const std::string& what, Place place, const std::string& name) {
    return {what + " " + (name.empty() ? "here" : name), std::move(place)};
}

/// All fillers of the area are 0, as where nothing was laid: those of a later source count then.
bool isOfZeros(const MemoryBuffer& image, const Area& area) {
    const auto elements = image.viewRange(area.start, area.length);
    for (std::size_t at = 0; at < elements.size();) {
        const std::size_t length = elements.inBlock(at, elements.size() - at);
        const std::uint8_t* const fillers = elements.fillersAt(at);
        if (fillers != nullptr &&
            std::any_of(fillers, fillers + length, [](std::uint8_t filler) { return filler != 0; }))
            return false;
        at += length;
    }
    return true;
}

/// Adds the parts of `area` of which no address was given a byte or a filler. The image itself is
/// asked, since its origins may be as many as the statements before.
void addGaps(AreaList& gaps, const MemoryBuffer& image, const Area& area,
             const OriginMap& fillers) {
    const OriginMap::Range* const filler = fillers.find(area.start);
    if (filler != nullptr && filler->area.contains(area)) return;
    const auto elements = image.viewRange(area.start, area.length);
    for (std::size_t at = elements.findUnwritten(0); at < elements.size();) {
        const std::size_t end = elements.findWritten(at);
        const Area gap{area.start + at, end - at};
        if (fillers.empty()) {
            gaps.push_back(gap);
        } else {
            const AreaList bare = uncovered(gap, fillers);
            gaps.insert(gaps.end(), bare.begin(), bare.end());
        }
        at = elements.findUnwritten(end);
    }
}

/// None if the file is gone, or is another one by now.
std::vector<Inspect::LineRun> knownLineRuns(const std::string& file, Facts::InputFormat format,
                                            std::uint32_t addressUnit) {
    Facts::Unheard unheard;
    const Facts::ListenerScope listening(unheard);
    try {
        return Inspect::lineRunsOf(file, format, addressUnit);
    } catch (const std::exception&) {
        return {};
    }
}

}  // namespace

std::vector<Note> notesOnLines(const Facts::OverlapRefused& refused, const std::string& name) {
    constexpr std::size_t mostLines = 4;
    if (!refused.format) return {};
    const std::string file(refused.source);
    std::vector<Note> notes;
    for (const std::uint64_t line : Inspect::linesAt(
             knownLineRuns(file, *refused.format, refused.addressUnit), refused.address)) {
        if (notes.size() == mostLines) break;
        notes.push_back(
            noteOn(notes.empty() ? "the earlier byte comes from" : "a later byte comes from",
                   placeIn(file, line), name));
    }
    if (notes.empty() && !name.empty())
        notes.push_back(noteOn("these bytes are in", placeIn(file, 0), name));
    return notes;
}

void Provenance::enter(const Parser::Statement& statement) {
    if (const Parser::Part* const made = statement.last(Parser::makesValue))
        values_.insert(made->text);
    statement_.reset();
    current_ = {};
    current_.hasNamedRange = statement.roles.hasAny({Role::Range, Role::Area}) ||
                             !statement.roles.hasAny({Role::InputFile, Role::UsesImage});
}

/// The number of the source that the statement itself is.
std::size_t Provenance::thisStatement() {
    if (!statement_) {
        statement_ = sources_.size();
        sources_.push_back({{}, 0, 0, nextOrigin()});
        origins_.push_back({"", Facts::InputFormat::RawBinary, reports_->statementPlace()});
    }
    return *statement_;
}

/// Adds the runs of a file to the sources, as ranges of the addresses that they give.
std::vector<OriginMap::Range> Provenance::addSources(const CmdNewBuffer& statement,
                                                     const TessaronImportApi& reader) {
    std::vector<OriginMap::Range> ranges;
    const auto add = [&](const Io::Import::SourceRun& run) {
        ranges.push_back({run.area, sources_.size(), 0});
        sources_.push_back({run.area, run.firstLine, run.lastLine, nextOrigin()});
    };
    const std::span<const Io::Import::SourceRun> runs = reader.getSourceRuns();
    if (runs.empty())
        for (const Area& area : reader.getDataAreas()) add({area, 0, 0});
    ranges.reserve(runs.size());
    // Of several sources the one with the highest number counts.
    if (statement.overlapRule() == OverlapRule::First)
        std::for_each(runs.rbegin(), runs.rend(), add);
    else
        std::ranges::for_each(runs, add);
    return ranges;
}

OriginMap Provenance::originsIn(const CmdNewBuffer& statement, const TessaronImportApi& reader) {
    std::vector<OriginMap::Range> ranges = addSources(statement, reader);
    origins_.push_back({statement.fileName(), reader.getFormat(), reports_->statementPlace(),
                        statement.addressUnit()});
    if (mayHaveNames(origins_.back())) current_.named = {{origins_.size() - 1, 0}};
    return OriginMap(std::move(ranges));
}

void Provenance::onRead(const CmdNewBuffer& statement, const TessaronImportApi& reader,
                        const Area& range) {
    Inspect::reportWords(statement.fileName(), reader, statement.addressUnit());
    const std::size_t firstSource = sources_.size();
    OriginMap all = originsIn(statement, reader);
    inputs_.push_back({statement.fileName(), reader.getFormat(), reports_->statementPlace(),
                       firstSource, sources_.size()});
    // Most files are taken as a whole.
    const bool isWhole = statement.areas().empty() && !all.empty() &&
                         range.contains(all.ranges().front().area) &&
                         range.contains(all.ranges().back().area);
    if (reader.hasStartAddress()) current_.startAddress = reader.getStartAddress();
    if (isWhole) {
        current_.written = std::move(all);
        return;
    }
    if (statement.areas().empty()) current_.written.lay(all, range);
    for (const Area& area : statement.areas())
        if (const auto part = area.clippedTo(range)) current_.written.lay(all, *part);
    const std::string& file = statement.fileName();
    if (all.empty()) {
        reports_->report(Kind::EmptyImage, file + " has no data", {Role::InputFile});
    } else if (current_.written.empty()) {
        const auto& first = all.ranges().front().area;
        const auto& last = all.ranges().back().area;
        reports_->report(Kind::EmptyImage,
                         "nothing of the " + Inspect::countText(all.size(), "byte") + " of " +
                             file + ", which " + (all.size() == 1 ? "is " : "are ") +
                             Strict::range({first.start, last.end() - first.start}) +
                             ", lies where the image is",
                         {Role::InputFile});
    } else {
        reportCropped(origins_.back(), all, current_.written);
    }
}

void Provenance::reportCropped(const Origin& input, const OriginMap& all, const OriginMap& kept) {
    if (all.size() == kept.size()) return;
    AreaList cropped;
    for (const OriginMap::Range& entry : all.ranges())
        for (const Area& area : uncovered(entry.area, kept)) {
            if (!cropped.empty() && cropped.back().end() == area.start)
                cropped.back().length += area.length;
            else
                cropped.push_back(area);
        }
    if (cropped.empty()) return;
    const std::uint64_t bytes = Inspect::byteCount(cropped);
    reports_->report(Kind::Cropped,
                     Inspect::countText(bytes, "byte") + " of " + input.file +
                         (bytes == 1 ? " is" : " are") +
                         " left out: " + list(cropped, namesOf(input)),
                     {Role::InputFile});
}

void Provenance::onOverlay(const CmdNewBuffer& statement, const MemoryBuffer& image,
                           const std::string& name, const MemoryBuffer& part) {
    const Image& source = images_[name];
    const bool isFirst = statement.overlapRule() == OverlapRule::First;
    if (statement.overlapRule() == OverlapRule::NotSet) {
        reportOverlaps(image, name, part);
        reportWiped(image, name, part);
    }
    current_.hasNamedRange =
        current_.hasNamedRange || (source.hasNamedRange && part.getArea() == image.getArea());
    const auto common = part.getArea().clippedTo(image.getArea());
    if (!common || part.getDataLength() == 0 || image.getDataLength() == 0) return;
    if (statement.overlapRule() == OverlapRule::NotSet) {
        current_.written.erase(*common);
        current_.fillers.erase(*common);
    }
    // One that is known is not added, since many parts may have the same names.
    for (const NamedFile& file : source.named)
        if (std::ranges::none_of(
                current_.named, [&](const NamedFile& known) { return haveSameNames(known, file); }))
            current_.named.insert(isFirst ? current_.named.end() : current_.named.begin(), file);
    if (isFirst) {
        OriginMap written;
        written.lay(source.written, *common);
        written.lay(current_.written, *common);
        current_.written.lay(written, *common);
    } else {
        current_.written.lay(source.written, *common);
    }
    OriginMap fillers;
    fillers.lay(source.fillers, *common);
    const RangeList& own = current_.fillers.ranges();
    for (auto range = own.firstBeyond(common->start);
         range != own.end() && range->area.start < common->end(); ++range) {
        const auto laid = range->area.clippedTo(*common);
        if (laid && !isOfZeros(image, *laid)) fillers.lay(current_.fillers, *laid);
    }
    current_.fillers.lay(fillers, *common);
}

AreaList Provenance::areasOf(const Input& input) const {
    AreaList areas;
    areas.reserve(input.endOfSources - input.firstSource);
    for (std::size_t i = input.firstSource; i < input.endOfSources; ++i)
        areas.push_back(sources_[i].area);
    return Inspect::joined(std::move(areas), 0);
}

const std::vector<Inspect::LineRun>& Provenance::lineRunsOf(const Source& source) const {
    const Origin& origin = originOf(source);
    const auto [lines, isNew] = lines_.try_emplace({origin.file, origin.addressUnit});
    if (isNew) lines->second = knownLineRuns(origin.file, origin.format, origin.addressUnit);
    return lines->second;
}

/// The byte that a source has at an address, where it was before images were regrouped; nothing if
/// nothing wrote it.
std::optional<Provenance::Byte> Provenance::byteAt(std::size_t source,
                                                   std::uint64_t address) const {
    while (sources_[source].regrouped != Source::notRegrouped) {
        const auto& [how, before] = regrouped_[sources_[source].regrouped];
        const auto origin = how.originOf(address);
        const OriginMap::Range* const range = before[origin.source].find(origin.address);
        if (range == nullptr) return std::nullopt;
        source = range->source;
        address = origin.address - range->moved;
    }
    return Byte{source, address};
}

Provenance::Lines Provenance::linesOf(const OriginMap::Range& range) const {
    const Source& source = sources_[range.source];
    const Area area{range.area.start - range.moved, range.area.length};
    if (source.regrouped != Source::notRegrouped) {
        const auto lineAt = [&](std::uint64_t address) {
            const auto byte = byteAt(range.source, address);
            return byte ? linesOf({{byte->address, 1}, byte->source, 0}).first : 0;
        };
        const auto [first, last] = std::minmax({lineAt(area.start), lineAt(area.end() - 1)});
        return first == 0 || originOf(source).file.empty() ? Lines{} : Lines{first, last};
    }
    if (area == source.area || source.firstLine == source.lastLine)
        return {source.firstLine, source.lastLine};
    const auto lineAt = [&](std::uint64_t address) {
        return Inspect::lineAt(lineRunsOf(source), address, source.firstLine, source.lastLine);
    };
    const Lines lines{lineAt(area.start), lineAt(area.end() - 1)};
    return lines.first == 0 || lines.last == 0 ? Lines{} : lines;
}

bool Provenance::areGivenNamesOf(const Origin& origin) const {
    return !names_.isEmpty() && origin.addressUnit == 1;
}

std::string Provenance::givenNameAt(std::uint64_t address) const {
    return reports_->statement().has(Role::AddressUnit) ? "" : names_.at(address);
}

bool Provenance::mayHaveNames(const Origin& origin) const {
    return areGivenNamesOf(origin) || origin.format == Facts::InputFormat::Elf;
}

bool Provenance::haveSameNames(const NamedFile& one, const NamedFile& other) const {
    const Origin& origin = origins_[one.origin];
    const Origin& another = origins_[other.origin];
    if (one.moved != other.moved) return false;
    if (areGivenNamesOf(origin)) return areGivenNamesOf(another);
    return origin.file == another.file && origin.addressUnit == another.addressUnit;
}

/// The names of what a file has at its addresses. Those of an ELF file are read at the first call
/// for it.
const Inspect::Names& Provenance::namesOf(const Origin& origin) const {
    static const Inspect::Names unknown;
    if (areGivenNamesOf(origin)) return names_;
    if (!mayHaveNames(origin)) return unknown;
    const auto [names, isNew] = elfNames_.try_emplace({origin.file, origin.addressUnit});
    if (!isNew) return names->second;
    Facts::Unheard unheard;
    const Facts::ListenerScope listening(unheard);
    try {
        names->second = Inspect::namesIn(origin.file, origin.addressUnit);
    } catch (const std::exception&) {
        // The file is gone, or its symbols are damaged: none of its names is known.
    }
    return names->second;
}

Note Provenance::originNote(const char* what, const OriginMap& origins,
                            std::uint64_t address) const {
    const OriginMap::Range* const found = origins.find(address);
    const auto byte =
        found == nullptr ? std::nullopt : byteAt(found->source, address - found->moved);
    if (!byte) return {what, std::nullopt};
    const Origin& origin = originOf(sources_[byte->source]);
    if (origin.file.empty()) return noteOn(what, origin.statement, "");
    const std::uint64_t line = linesOf({{byte->address, 1}, byte->source, 0}).first;
    std::string name = namesOf(origin).at(byte->address);
    if (line == 0) name += (name.empty() ? "" : " of ") + origin.file;
    return noteOn(what, placeIn(origin.file, line), name);
}

/// Nothing where no name can be.
std::optional<Provenance::NamedByte> Provenance::namedByteAt(const Image& image,
                                                             std::uint64_t address) const {
    const OriginMap::Range* const range = image.written.find(address);
    const auto byte =
        range == nullptr ? std::nullopt : byteAt(range->source, address - range->moved);
    if (!byte) return std::nullopt;
    const Origin& origin = originOf(sources_[byte->source]);
    if (!origin.file.empty()) return NamedByte{&namesOf(origin), byte->address};
    for (const NamedFile& file : image.named) {
        const Inspect::Names& names = namesOf(origins_[file.origin]);
        if (names.find(address - file.moved) != nullptr)
            return NamedByte{&names, address - file.moved};
    }
    return std::nullopt;
}

std::string Provenance::namesAt(const std::string& image, const Area& area) const {
    const auto found = images_.find(image);
    if (found == images_.end() || area.length == 0) return "";
    const auto first = namedByteAt(found->second, area.start);
    const auto last = namedByteAt(found->second, area.end() - 1);
    if (first && last && first->names == last->names &&
        last->address - first->address == area.length - 1)
        return first->names->of({first->address, area.length});
    const std::string begin = first ? first->names->at(first->address) : "";
    const std::string end = last ? last->names->at(last->address) : "";
    return Inspect::fromTo(begin, end);
}

Note Provenance::noteOf(const char* what, const std::string& image, std::uint64_t address) const {
    const auto found = images_.find(image);
    if (found == images_.end()) return {what, std::nullopt};
    const bool isWritten = found->second.written.find(address) != nullptr;
    return originNote(what, isWritten ? found->second.written : found->second.fillers, address);
}

std::vector<Note> Provenance::notesOn(const Facts::OverlapRefused& refused) const {
    if (refused.format) {
        const Inspect::Names& names =
            namesOf(Origin{std::string(refused.source), *refused.format, {}, refused.addressUnit});
        return notesOnLines(refused, names.at(refused.address));
    }
    // The image before the refused one that has written the address last.
    std::string earlier(refused.source);
    for (const Parser::Part& part : reports_->statement().all(Role::UsesImage)) {
        if (part.text == refused.source) break;
        const auto image = images_.find(std::string(part.text));
        if (image != images_.end() && image->second.written.find(refused.address) != nullptr)
            earlier = part.text;
    }
    return {noteOf("the earlier byte comes from", earlier, refused.address),
            noteOf("the later byte comes from", std::string(refused.source), refused.address)};
}

std::vector<Note> Provenance::notesOn(const Facts::ImageDiffers& difference) const {
    std::vector<Note> notes;
    const auto add = [&](const char* what, std::string_view image) {
        Note note = noteOf(what, std::string(image), difference.address);
        if (note.place) notes.push_back(std::move(note));
    };
    if (difference.found) add("this byte comes from", difference.image);
    if (!difference.other.empty()) add("the other byte comes from", difference.other);
    for (Note& note : notesOnValue()) notes.push_back(std::move(note));
    return notes;
}

std::vector<Note> Provenance::notesOnValue() const {
    const Parser::Part* const used = reports_->statement().last(Parser::usesValue);
    const auto value = used == nullptr ? values_.end() : values_.find(used->text);
    if (value == values_.end()) return {};
    const bool isComputed = used->role != Role::UsesSignature;
    return {{std::string(*value) + (isComputed ? " is computed here" : " comes from here"),
             reports_->placeOf(*value)}};
}

void Provenance::reportOverlaps(const MemoryBuffer& image, const std::string& name,
                                const MemoryBuffer& part) const {
    const auto source = images_.find(name);
    const std::vector<Overlap> found = Buffer::overlaps(image, part);
    for (std::size_t i = 0; i < std::min(found.size(), mostReported); ++i) {
        const Overlap& overlap = found[i];
        const bool isConflict = overlap.differences != 0;
        const std::uint64_t address = isConflict ? overlap.firstDifference : overlap.area.start;
        const std::string where =
            Inspect::countText(overlap.area.length, "byte") + " " + range(overlap.area);
        std::vector<Note> notes{
            originNote("the earlier byte comes from", current_.written, address),
            originNote("the later byte comes from", source->second.written, address)};
        std::string text = name;
        if (isConflict)
            text.append(" replaces ")
                .append(where)
                .append(" of the images before it, ")
                .append(std::to_string(overlap.differences))
                .append(" of them by other bytes: ")
                .append(firstDifferences(image, part, overlap));
        else
            text.append(" has the same ").append(where).append(" as the images before it");
        reports_->reportName(isConflict ? Kind::Conflict : Kind::Overlap, name, std::move(text),
                             "-onOverlap= says which byte counts", std::move(notes));
    }
    if (found.size() > mostReported)
        reports_->reportName(
            std::ranges::any_of(found, [](const Overlap& o) { return o.differences != 0; })
                ? Kind::Conflict
                : Kind::Overlap,
            name,
            name + " overlaps in " + Inspect::countText(found.size() - mostReported, "more range"),
            "", {});
}

void Provenance::reportWiped(const MemoryBuffer& image, const std::string& name,
                             const MemoryBuffer& part) const {
    const AreaList wiped = Buffer::wipedAreas(image, part);
    if (wiped.empty()) return;
    reports_->reportName(
        Kind::Wiped, name,
        "addresses that " + name + " did not write replace " +
            Inspect::countText(Inspect::byteCount(wiped), "byte") +
            " of the images before it: " + list(wiped),
        "-onOverlap=Last lets only written addresses take part",
        {originNote("the first of them comes from", current_.written, wiped.front().start)});
}

void Provenance::onWrite(const std::string& name, const Area& area) {
    OriginMap& written = name.empty() ? current_.written : images_[name].written;
    written.set(area, thisStatement());
}

void Provenance::onFill(const std::string& name, const Area& area) {
    images_[name].fillers.set(area, thisStatement());
}

/// Adds a source whose bytes go to other places, as the next of `regrouped_` says; its number.
std::size_t Provenance::regroupedSource(const Source& source) {
    sources_.push_back({{}, 0, 0, source.origin, static_cast<std::uint32_t>(regrouped_.size())});
    return sources_.size() - 1;
}

/// The origins of an image, given those of the only one that it is made of.
OriginMap Provenance::regroupedOrigins(const OriginMap& before,
                                       const Buffer::Regrouping& regrouping) {
    OriginMap after;
    for (const OriginMap::Range& range : before.ranges()) {
        const std::size_t source = regroupedSource(sources_[range.source]);
        for (const Area& area : regrouping.placesOf(range.area)) after.set(area, source);
    }
    regrouped_.push_back({regrouping, {before}});
    return after;
}

void Provenance::onRegroup(const Buffer::Regrouping& regrouping) {
    current_.named.clear();
    current_.written = regroupedOrigins(current_.written, regrouping);
    current_.fillers = regroupedOrigins(current_.fillers, regrouping);
}

void Provenance::onInterleave(const Buffer::Regrouping& regrouping,
                              std::span<const std::string> names,
                              std::span<const MemoryBuffer* const> lanes,
                              const MemoryBuffer& image) {
    Regrouped written{regrouping, {}};
    for (std::size_t i = 0; i < lanes.size(); ++i)
        written.before.emplace_back().lay(images_[names[i]].written, lanes[i]->getArea());
    // Neighbours come from different images, so a range for each of them would be one for each
    // byte: the statement is what all of them have in common.
    const std::size_t source = regroupedSource(sources_[thisStatement()]);
    for (const Area& area : Buffer::writtenAreas(image, image.getArea()))
        current_.written.set(area, source);
    regrouped_.push_back(std::move(written));
    // Fillers are laid under whole images.
    const auto isFilled = [this](const std::string& name) {
        return !images_[name].fillers.empty();
    };
    if (std::ranges::all_of(names, isFilled))
        current_.fillers.set(image.getArea(), thisStatement());
}

void Provenance::onMade(const std::string& name, const MemoryBuffer& /*image*/,
                        std::uint64_t distance) {
    current_.written.move(distance);
    current_.fillers.move(distance);
    for (NamedFile& file : current_.named) file.moved += distance;
    images_.insert_or_assign(name, std::move(current_));
    current_ = {};
}

void Provenance::checkCovered(const Parser::Statement& statement, const CmdContext& context) const {
    for (const Parser::Part& part : statement.all(Role::UsesImage)) {
        const std::string name(part.text);
        const auto image = context.buffers.find(name);
        const auto origins = images_.find(name);
        if (image == context.buffers.end() || origins == images_.end()) continue;
        AreaList areas = statement.areas();
        if (areas.empty()) areas.push_back(image->second.getArea());
        AreaList gaps;
        for (const Area& area : areas) {
            if (!image->second.getArea().contains(area)) continue;
            addGaps(gaps, image->second, area, origins->second.fillers);
        }
        if (gaps.empty()) continue;
        reports_->reportName(
            Kind::Unwritten, name,
            "nothing gave a byte to " + Inspect::grouped(Inspect::byteCount(gaps)) +
                " of the addresses that are covered: " + list(gaps),
            "lay a filler under them: FILL_BUFFER " + name + " WITH_FILLER { 0xFF }", {});
    }
}

}  // namespace Strict
