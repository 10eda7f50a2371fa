#include "strict/record/Comparison.hpp"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "buffer/Difference.hpp"
#include "facts/Listener.hpp"
#include "inspect/Image.hpp"
#include "inspect/LineRuns.hpp"
#include "inspect/Words.hpp"
#include "io/File.hpp"
#include "io/import/GenericInFile.hpp"
#include "io/import/Malformed.hpp"
#include "platform/Files.hpp"
#include "platform/Paths.hpp"
#include "util/Hex.hpp"

namespace Strict {

namespace {

/// A file read as an image.
struct Contents {
    std::string format;  ///< as Inspect::formatOf has it
    Buffer::MemoryBuffer image;

    /// Positions in the image are offsets in the file.
    bool isRaw() const { return format == rawFormat; }
    static constexpr const char* rawFormat = "raw bytes";
};

/// The file as the host in force has it; nothing if it cannot be opened or is damaged.
std::optional<Contents> contentsOf(const std::string& path) {
    Facts::Unheard unheard;
    const Facts::ListenerScope silence(unheard);
    try {
        // What `info` reads is not damaged.
        const std::string format = Inspect::formatOf(path);
        auto image = Inspect::openImage(path);
        if (!image) return std::nullopt;
        if (image->parts.size() == 1) return Contents{format, std::move(image->parts.front())};
        // An empty file, or one whose areas are far apart.
        Io::Import::GenericInFile file(path);
        const bool isRaw = file.type() == Io::Import::InFileType::RawBinary;
        if (!isRaw && file.getDataLength() == 0) return std::nullopt;
        return Contents{isRaw ? Contents::rawFormat : format, file.takeMemory()};
    } catch (const Io::bad_open&) {
        return std::nullopt;
    } catch (const Io::Import::Malformed&) {
        return std::nullopt;
    }
}

/// The written byte of an image as two digits, or "no byte".
std::string byteText(const Buffer::MemoryBuffer& image, std::uint64_t address) {
    const Buffer::ElementView element = image.viewRange(address, 1);
    if (element.empty() || element[0].hasValue == 0) return "no byte";
    return Util::hexByte(*element.values());
}

std::string textOf(const Buffer::AreaList& areas) {
    constexpr std::size_t mostShown = 8;
    std::string text;
    for (std::size_t i = 0; i < areas.size() && i < mostShown; ++i)
        text += (i == 0 ? "" : ", ") + Inspect::addressText(areas[i].start) + " (" +
                Inspect::countText(areas[i].length, "byte") + ")";
    if (areas.size() > mostShown)
        text += " and in " + Inspect::countText(areas.size() - mostShown, "more area");
    return text;
}

/// The image that gave a byte of an output, and the address that the byte has in it.
struct Where {
    const Inspect::ImageRecord* image;
    std::uint64_t address;
};

using Images = std::vector<const Inspect::ImageRecord*>;

/// The images of an output, in its order.
Images imagesOf(const Inspect::FileRecord& output, const Inspect::RunRecord& record) {
    Images images;
    for (const std::string& name : output.images) {
        const auto image = std::ranges::find(record.images, name, &Inspect::ImageRecord::name);
        if (image != record.images.end()) images.push_back(&*image);
    }
    return images;
}

const Inspect::OriginRange* originOf(const Where& where) {
    const auto& ranges = where.image->ranges;
    const auto found = std::ranges::find_if(ranges, [&where](const Inspect::OriginRange& range) {
        return range.area.contains({where.address, 1});
    });
    return found == ranges.end() ? nullptr : &*found;
}

std::optional<Where> whereIs(const Images& images, std::uint64_t address) {
    for (const Inspect::ImageRecord* const image : images)
        if (const Where where{image, address}; originOf(where) != nullptr) return where;
    return std::nullopt;
}

/// The same for an offset in a raw file, which has the images one after the other.
std::optional<Where> whereInRaw(const Images& images, std::uint64_t offset) {
    for (const Inspect::ImageRecord* const image : images) {
        const std::uint64_t length = image->image->getDataLength();
        if (offset < length) return Where{image, image->image->getStartAddress() + offset};
        offset -= length;
    }
    return std::nullopt;
}

/// The same for an offset in a DfuSe file with one target, by the elements of the target: each is
/// an address and a length of four bytes, and data (UM0391 of ST, section 2.3).
std::optional<Where> whereInDfuSe(const Images& images, const Buffer::MemoryBuffer& file,
                                  std::uint64_t offset) {
    constexpr std::uint64_t firstElement = 11 + 274;  // after the prefixes of file and target
    constexpr std::uint64_t prefix = 8;
    const auto numberAt = [&file](std::uint64_t at) {
        std::uint64_t number = 0;
        const Buffer::ElementView bytes = file.viewRange(at, 4);
        for (std::size_t i = bytes.size(); i-- != 0;) number = number << 8U | bytes.values()[i];
        return number;
    };
    std::uint64_t at = firstElement;
    while (at + prefix <= offset && at + prefix < file.getDataLength()) {
        const std::uint64_t length = numberAt(at + 4);
        if (offset - at - prefix < length)
            return whereIs(images, numberAt(at) + offset - at - prefix);
        at += prefix + length;
    }
    return std::nullopt;
}

/// What the script makes of an output, beside the record of the run.
struct Made {
    const Contents* contents;
    const std::string* format;  ///< the keyword
    Images images;

    /// The origin of a position in the contents; nothing where the format has no addresses.
    std::optional<Where> whereOf(std::uint64_t position) const {
        if (*format == "RawBinary") return whereInRaw(images, position);
        if (*format == "DfuSe") return whereInDfuSe(images, contents->image, position);
        return contents->isRaw() ? std::nullopt : whereIs(images, position);
    }
};

/// The line among `runs` that gave an address; 0 if none did.
std::uint64_t lineAt(const std::vector<Inspect::LineRun>& runs, std::uint64_t address) {
    for (const Inspect::LineRun& run : runs)
        if (run.area.contains({address, 1}))
            return run.firstLine + (address - run.area.start) / run.bytesPerLine;
    return 0;
}

/// A note with the statement, and the line of the input, that a byte comes from.
Note noteOn(std::string text, const std::optional<Where>& where, const Inspect::RunRecord& record) {
    Note note{std::move(text), std::nullopt};
    const Inspect::OriginRange* const origin = where ? originOf(*where) : nullptr;
    if (origin == nullptr) return note;
    if (!origin->file.empty()) note.text += ", from " + origin->file;
    if (const std::uint64_t line = lineAt(origin->lines, where->address))
        note.text += ", " + Inspect::linesText(line, line);
    else if (origin->firstLine != 0)
        note.text += ", " + Inspect::linesText(origin->firstLine, origin->lastLine);
    note.place = Place{record.scriptPath, origin->line, 0, "", 0, 0};
    return note;
}

/// Notes on the first areas: what each file has there, and where the script's byte comes from.
std::vector<Note> notesOn(const Buffer::AreaList& areas, const Contents& disk, const Made& made,
                          const Inspect::RunRecord& record) {
    constexpr std::size_t mostNotes = 4;
    std::vector<Note> notes;
    for (std::size_t i = 0; i < areas.size() && i < mostNotes; ++i) {
        const std::uint64_t position = areas[i].start;
        const std::optional<Where> where = made.whereOf(position);
        const std::string what =
            where ? Inspect::addressText(where->address) + " of " + where->image->name
                  : (disk.isRaw() ? "offset " : "") + Inspect::addressText(position);
        notes.push_back(noteOn(what + " is " + byteText(disk.image, position) +
                                   " in the file and " + byteText(made.contents->image, position) +
                                   " in the image",
                               where, record));
    }
    return notes;
}

/// The first line in which two texts differ, counted from 1.
std::uint64_t firstDifferentLine(std::string_view one, std::string_view other) {
    const auto [end, otherEnd] = std::ranges::mismatch(one, other);
    return static_cast<std::uint64_t>(std::count(one.begin(), end, '\n')) + 1;
}

/// Explains a file that cannot be read as an image: the line in which it differs, and what is
/// there.
void explainDamage(Diagnostic& diagnostic, std::uint64_t line, const Made& made,
                   const std::string& path, const Inspect::RunRecord& record) {
    diagnostic.hint =
        "the file is damaged; the first line that differs is line " + Inspect::grouped(line);
    for (const Inspect::LineRun& run : Inspect::lineRunsOf(path, made.contents->format)) {
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

/// Adds where an output that the script makes differs from the file on disk, whose text is `text`.
void explain(Diagnostic& diagnostic, RunFiles& files, const Inspect::FileRecord& output,
             const std::string& path, std::string_view text, const Inspect::RunRecord& record) {
    const std::string format = Inspect::formatOf(path);
    const std::optional<Contents> disk = contentsOf(path);
    const Io::HostScope hosting(files);
    const std::optional<Contents> contents = contentsOf(path);
    if (!contents) return;
    const Made made{&*contents, &output.format, imagesOf(output, record)};
    if (format != contents->format) {
        diagnostic.hint = "the formats differ";
        return;
    }
    if (!disk) {
        explainDamage(diagnostic, firstDifferentLine(text, files.contentsOf(path)), made, path,
                      record);
        return;
    }
    const Buffer::AreaList areas = Buffer::differences(disk->image, contents->image);
    if (areas.empty()) {
        diagnostic.hint = haveSameLines(text, files.contentsOf(path))
                              ? "only the line ends differ"
                              : "the bytes of the images are the same, the text differs";
        return;
    }
    diagnostic.hint =
        (disk->isRaw() ? "they differ at the offsets " : "they differ at the addresses ") +
        textOf(areas);
    diagnostic.notes = notesOn(areas, *disk, made, record);
}

}  // namespace

bool compareWithDisk(RunFiles& files, const Inspect::RunRecord& record, DiagnosticSink& sink) {
    bool isEqual = true;
    for (const std::string& path : files.outputs()) {
        const auto disk = Platform::readFile(path);
        if (disk && disk->text() == files.contentsOf(path)) continue;
        isEqual = false;
        Diagnostic diagnostic{};
        diagnostic.kind = Kind::Differs;
        diagnostic.text = path + (disk ? " is not what the script makes today" : " is missing");
        const auto output = std::ranges::find(record.outputs, Platform::portablePath(path),
                                              &Inspect::FileRecord::path);
        if (disk && output != record.outputs.end())
            explain(diagnostic, files, *output, path, disk->text(), record);
        sink.take(diagnostic);
    }
    return isEqual;
}

}  // namespace Strict
