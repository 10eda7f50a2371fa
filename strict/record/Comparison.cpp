#include "strict/record/Comparison.hpp"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "buffer/Difference.hpp"
#include "facts/Listener.hpp"
#include "inspect/Diff.hpp"
#include "inspect/Image.hpp"
#include "inspect/LineRuns.hpp"
#include "inspect/Words.hpp"
#include "io/File.hpp"
#include "io/import/Malformed.hpp"
#include "parser/commands/CmdWriteFile.hpp"
#include "platform/Files.hpp"
#include "platform/Paths.hpp"
#include "util/Hex.hpp"

namespace Strict {

namespace {

/// Positions in the image are offsets in the file.
bool isRaw(const Inspect::Image& image) {
    return image.format == Facts::InputFormat::RawBinary;
}

/// The file as the host in force has it; nothing if it cannot be opened or is damaged.
///
/// @param format       that of the output
/// @param addressUnit  its addresses count words of that many bytes
std::optional<Inspect::Image> contentsOf(const std::string& path,
                                         const Parser::WrapperLib::ExportFormat* format,
                                         std::uint32_t addressUnit) {
    const bool isRaw = format == nullptr || !format->isComparedByAddress;
    const auto given = isRaw ? std::optional(Facts::InputFormat::RawBinary) : std::nullopt;
    Facts::Unheard unheard;
    const Facts::ListenerScope silence(unheard);
    try {
        auto image = Inspect::openImage(path, given, {.addressUnit = addressUnit});
        return image && image->data.getDataLength() == 0 ? std::nullopt : std::move(image);
    } catch (const Io::bad_open&) {
        return std::nullopt;
    } catch (const Io::Import::Malformed&) {
        return std::nullopt;
    }
}

/// The written byte of an image as two digits, or "no byte".
std::string byteText(const Inspect::Image& image, std::uint64_t address) {
    const Buffer::MemoryBuffer* const data = image.dataWith({address, 1});
    if (data == nullptr) return "no byte";
    const Buffer::ElementView element = data->viewRange(address, 1);
    return element[0].hasValue == 0 ? "no byte" : Util::hexByte(*element.values());
}

/// The ranges at which the images differ, ascending.
Buffer::AreaList differences(const Inspect::Image& left, const Inspect::Image& right) {
    const Buffer::Differences where = Inspect::compare(left, right, {}).where;
    Buffer::AreaList all = where.changed;
    for (const Buffer::AreaList* const some : {&where.onlyLeft, &where.onlyRight})
        all.insert(all.end(), some->begin(), some->end());
    return Inspect::joined(std::move(all), 0);
}

/// The image that gave a byte of an output, and the address that the byte has in it.
struct ImagePlace {
    const Inspect::ImageRecord* image;
    std::uint64_t address;
};

using Images = std::vector<const Inspect::ImageRecord*>;

/// The outputs and images of a record, by their names.
class NamedRecords {
public:
    explicit NamedRecords(const Inspect::RunRecord& record) {
        for (const Inspect::FileRecord& output : record.outputs)
            outputs_.try_emplace(output.path, &output);
        for (const Inspect::ImageRecord& image : record.images)
            images_.try_emplace(image.name, &image);
    }

    /// Null if no statement wrote the file.
    const Inspect::FileRecord* output(const std::string& path) const {
        const auto found = outputs_.find(path);
        return found == outputs_.end() ? nullptr : found->second;
    }

    /// The images of an output, in its order.
    Images imagesOf(const Inspect::FileRecord& output) const {
        Images images;
        for (const std::string& name : output.images)
            if (const auto image = images_.find(name); image != images_.end())
                images.push_back(image->second);
        return images;
    }

private:
    std::map<std::string_view, const Inspect::FileRecord*> outputs_;
    std::map<std::string_view, const Inspect::ImageRecord*> images_;
};

const Inspect::OriginRange* rangeOf(const ImagePlace& where) {
    const auto& ranges = where.image->ranges;
    const auto next = std::ranges::upper_bound(
        ranges, where.address, {},
        [](const Inspect::OriginRange& range) { return range.area.start; });
    if (next == ranges.begin()) return nullptr;
    const Inspect::OriginRange& range = *std::prev(next);
    return range.area.contains({where.address, 1}) ? &range : nullptr;
}

std::optional<ImagePlace> whereIs(const Images& images, std::uint64_t address) {
    for (const Inspect::ImageRecord* const image : images)
        if (const ImagePlace where{image, address}; rangeOf(where) != nullptr) return where;
    return std::nullopt;
}

/// The same for an offset in a raw file, which has the images one after the other.
std::optional<ImagePlace> whereInRaw(const Images& images, std::uint64_t offset) {
    for (const Inspect::ImageRecord* const image : images) {
        const std::uint64_t length = image->image->getDataLength();
        if (offset < length) return ImagePlace{image, image->image->getStartAddress() + offset};
        offset -= length;
    }
    return std::nullopt;
}

/// What the script makes of an output, beside the record of the run.
struct ScriptOutput {
    const Inspect::Image* contents;
    const Parser::WrapperLib::ExportFormat* format;
    Images images;
    std::uint32_t addressUnit;  ///< bytes of the words that its addresses count
    std::uint32_t swappedWord;  ///< bytes of the words that are reversed

    /// The origin of a position in the contents; nothing where the format has no addresses.
    std::optional<ImagePlace> whereOf(std::uint64_t position) const {
        if (format != nullptr && format->isImageItself) return whereInRaw(images, before(position));
        if (format != nullptr && format->addressAt != nullptr) {
            const auto address = format->addressAt(contents->data, position);
            return address ? whereIs(images, before(*address)) : std::nullopt;
        }
        return isRaw(*contents) ? std::nullopt : whereIs(images, before(position));
    }

private:
    /// Where a byte was before the bytes of words were reversed.
    std::uint64_t before(std::uint64_t address) const { return address ^ (swappedWord - 1); }
};

/// What is at an area of an output, as far as the run knows.
std::string namesOf(const Buffer::Area& area, const ScriptOutput& made,
                    const Provenance& provenance) {
    const auto first = made.whereOf(area.start);
    const auto last = made.whereOf(area.end() - 1);
    const auto nameAt = [&provenance](const std::optional<ImagePlace>& where) {
        return where ? provenance.namesAt(where->image->name, {where->address, 1}) : "";
    };
    if (first && last && first->image == last->image &&
        last->address - first->address == area.length - 1)
        return provenance.namesAt(first->image->name, {first->address, area.length});
    return Inspect::fromTo(nameAt(first), nameAt(last));
}

/// "0x00008002 (1 byte, settings+0x2), 0x00008006 (2 bytes) and in 3 more areas"
std::string textOf(const Buffer::AreaList& areas, const ScriptOutput& made,
                   const Provenance& provenance) {
    constexpr std::size_t mostShown = 8;
    std::string text;
    for (std::size_t i = 0; i < areas.size() && i < mostShown; ++i) {
        const std::string names = namesOf(areas[i], made, provenance);
        text += (i == 0 ? "" : ", ") + Inspect::addressText(areas[i].start) + " (" +
                Inspect::countText(areas[i].length, "byte") + (names.empty() ? "" : ", " + names) +
                ")";
    }
    if (areas.size() > mostShown)
        text += " and in " + Inspect::countText(areas.size() - mostShown, "more area");
    return text;
}

/// The file of a script that the record names; the script itself if the name is empty.
std::string fileOf(const std::string& script, const Inspect::RunRecord& record) {
    const auto included =
        std::ranges::find(record.included, script, &Inspect::IncludedScript::path);
    return included == record.included.end() ? record.scriptPath : included->file;
}

/// A note with the statement, and the line of the input, that a byte comes from.
Note noteOn(std::string text, const std::optional<ImagePlace>& where,
            const Inspect::RunRecord& record) {
    Note note{std::move(text), std::nullopt};
    const Inspect::OriginRange* const range = where ? rangeOf(*where) : nullptr;
    if (range == nullptr) return note;
    const Inspect::RangeOrigin& origin = where->image->originOf(*range);
    if (!origin.file.empty()) note.text += ", from " + origin.file;
    if (const std::uint64_t line = Inspect::lineAt(range->lines(), where->address))
        note.text += ", " + Inspect::linesText(line, line);
    else if (range->firstLine != 0)
        note.text += ", " + Inspect::linesText(range->firstLine, range->lastLine);
    note.place = Place{fileOf(origin.script, record), origin.line, 0, "", 0, 0};
    return note;
}

/// Notes on the first areas: what each file has there, and where the script's byte comes from.
std::vector<Note> notesOn(const Buffer::AreaList& areas, const Inspect::Image& disk,
                          const ScriptOutput& made, const Inspect::RunRecord& record) {
    constexpr std::size_t mostNotes = 4;
    std::vector<Note> notes;
    for (std::size_t i = 0; i < areas.size() && i < mostNotes; ++i) {
        const std::uint64_t position = areas[i].start;
        const std::optional<ImagePlace> where = made.whereOf(position);
        const std::string what =
            where ? Inspect::addressText(where->address) + " of " + where->image->name
                  : (isRaw(disk) ? "offset " : "") + Inspect::addressText(position);
        notes.push_back(noteOn(what + " has " + byteText(disk, position) + " in the file and " +
                                   byteText(*made.contents, position) + " in the image",
                               where, record));
    }
    return notes;
}

/// The file as it is now; empty if it is gone.
Platform::FileContents fileAt(const std::string& path) {
    auto contents = Platform::readFile(path);
    return contents ? std::move(*contents) : Platform::FileContents();
}

/// The first line in which two texts differ, counted from 1.
std::uint64_t firstDifferentLine(std::string_view one, std::string_view other) {
    const auto [end, otherEnd] = std::ranges::mismatch(one, other);
    return static_cast<std::uint64_t>(std::count(one.begin(), end, '\n')) + 1;
}

/// Explains a file that cannot be read as an image: the line in which it differs, if it has lines,
/// and what is there.
void explainDamage(Diagnostic& diagnostic, std::uint64_t line, const ScriptOutput& made,
                   const std::string& path, const Inspect::RunRecord& record) {
    const auto runs = Inspect::lineRunsOf(path, made.contents->format, made.addressUnit);
    diagnostic.hint = "the file is damaged";
    if (!runs.empty())
        diagnostic.hint += "; the first line that differs is line " + Inspect::grouped(line);
    for (const Inspect::LineRun& run : runs) {
        if (line < run.firstLine) continue;
        const std::uint64_t distance = (line - run.firstLine) * run.bytesPerLine;
        if (distance >= run.area.length) continue;
        const auto where = made.whereOf(run.area.start + distance);
        if (!where) return;
        diagnostic.notes.push_back(noteOn("the line begins with " +
                                              Inspect::addressText(where->address) + " of " +
                                              where->image->name,
                                          where, record));
        return;
    }
}

/// The texts have the same lines, with line feeds or with carriage returns before them.
bool haveSameLines(std::string_view one, std::string_view other) {
    const auto skip = [](std::string_view text, std::size_t at) {
        return std::min(text.find_first_not_of('\r', at), text.size());
    };
    std::size_t i = skip(one, 0);
    std::size_t j = skip(other, 0);
    while (i < one.size() && j < other.size() && one[i] == other[j]) {
        i = skip(one, i + 1);
        j = skip(other, j + 1);
    }
    return i == one.size() && j == other.size();
}

/// Adds where an output that the script makes differs from the file on disk.
void explain(Diagnostic& diagnostic, RunFiles& files, const Inspect::FileRecord& output,
             const Images& images, const std::string& path, const Inspect::RunRecord& record,
             const Provenance& provenance) {
    const auto* const format = Parser::WrapperLib::CmdWriteFile::formatNamed(output.format);
    const std::optional<Inspect::Image> disk = contentsOf(path, format, output.addressUnit);
    const Io::HostScope hosting(files);
    const std::optional<Inspect::Image> contents = contentsOf(path, format, output.addressUnit);
    if (!contents) return;
    const ScriptOutput made{&*contents, format, images, output.addressUnit, output.swappedWord};
    if (!disk) {
        explainDamage(diagnostic, firstDifferentLine(fileAt(path).text(), files.contentsOf(path)),
                      made, path, record);
        return;
    }
    if (disk->format != contents->format) {
        diagnostic.hint = "the formats differ";
        return;
    }
    const Buffer::AreaList areas = differences(*disk, *contents);
    if (areas.empty()) {
        diagnostic.hint =
            haveSameLines(fileAt(path).text(), files.contentsOf(path))
                ? "only the line ends differ"
                : "the bytes of the images are the same, the rest of the file differs";
        return;
    }
    diagnostic.hint =
        (isRaw(*disk) ? "they differ at the offsets " : "they differ at the addresses ") +
        textOf(areas, made, provenance);
    diagnostic.notes = notesOn(areas, *disk, made, record);
}

}  // namespace

bool compareWithDisk(RunFiles& files, const std::function<const Inspect::RunRecord&()>& record,
                     const Provenance& provenance, DiagnosticSink& sink) {
    bool isEqual = true;
    std::optional<NamedRecords> named;
    for (const std::string& path : files.outputs()) {
        const FileMatch match = files.matchOnDisk(path);
        if (match == FileMatch::Equal) continue;
        isEqual = false;
        const bool isThere = match == FileMatch::Different;
        Diagnostic diagnostic{};
        diagnostic.kind = Kind::Differs;
        diagnostic.text = path + (isThere ? " is not what the script makes today" : " is missing");
        if (isThere) {
            if (!named) named.emplace(record());
            if (const auto* const output = named->output(Platform::portablePath(path)))
                explain(diagnostic, files, *output, named->imagesOf(*output), path, record(),
                        provenance);
        }
        sink.take(diagnostic);
    }
    return isEqual;
}

}  // namespace Strict
