#include "strict/Comparison.hpp"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "buffer/Difference.hpp"
#include "facts/Listener.hpp"
#include "io/File.hpp"
#include "io/import/GenericInFile.hpp"
#include "platform/Files.hpp"
#include "strict/Arithmetic.hpp"
#include "util/Hex.hpp"

namespace Strict {

namespace {

/// A file read as an image.
struct Contents {
    Io::Import::InFileType type;
    Buffer::MemoryBuffer image;
};

/// The file as the host in force has it.
std::optional<Contents> contentsOf(const std::string& path) {
    Facts::Unheard unheard;
    const Facts::ListenerScope silence(unheard);
    try {
        Io::Import::GenericInFile file(path);
        return Contents{file.type(), file.takeMemory()};
    } catch (const Io::bad_open&) {
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
        text += (i == 0 ? "" : ", ") + hexadecimal(areas[i].start) + " (" +
                Inspect::countText(areas[i].length, "byte") + ")";
    if (areas.size() > mostShown)
        text += " and in " + Inspect::countText(areas.size() - mostShown, "more area");
    return text;
}

/// The origin of what the script puts at `address` of one of the images, whose name is added to
/// `where`.
const Inspect::OriginRange* originOf(const Inspect::RunRecord& record,
                                     const std::vector<std::string>& images, std::uint64_t address,
                                     std::string& where) {
    for (const Inspect::ImageRecord& image : record.images) {
        if (std::ranges::find(images, image.name) == images.end()) continue;
        for (const Inspect::OriginRange& range : image.ranges) {
            if (!range.area.contains({address, 1})) continue;
            where += " of " + image.name;
            return &range;
        }
    }
    return nullptr;
}

/// Notes on the first areas: what each file has there, and where the script's byte comes from.
std::vector<Note> notesOn(const Buffer::AreaList& areas, const Contents& disk, const Contents& made,
                          const Inspect::FileRecord& output, const Inspect::RunRecord& record) {
    constexpr std::size_t mostNotes = 4;
    std::vector<Note> notes;
    // An offset of a raw file is an address of its image, if it has but one.
    std::uint64_t start = 0;
    if (made.type == Io::Import::InFileType::RawBinary && output.images.size() == 1)
        for (const Inspect::ImageRecord& image : record.images)
            if (image.name == output.images.front()) start = image.image->getStartAddress();
    for (std::size_t i = 0; i < areas.size() && i < mostNotes; ++i) {
        const std::uint64_t address = areas[i].start;
        std::string where = hexadecimal(start + address);
        const Inspect::OriginRange* const origin =
            originOf(record, output.images, start + address, where);
        Note note{where + " is " + byteText(disk.image, address) + " in the file and " +
                      byteText(made.image, address) + " in the image",
                  std::nullopt};
        if (origin != nullptr) {
            if (!origin->file.empty()) note.text += ", from " + origin->file;
            if (origin->firstLine != 0)
                note.text += ", " + Inspect::linesText(origin->firstLine, origin->lastLine);
            note.place = Place{record.scriptPath, origin->line, 0, "", 0, 0};
        }
        notes.push_back(std::move(note));
    }
    return notes;
}

/// Adds where an output that the script makes differs from the file on disk.
void explain(Diagnostic& diagnostic, OutputSet& files, const Inspect::FileRecord& output,
             const std::string& path, const Inspect::RunRecord& record) {
    const std::optional<Contents> disk = contentsOf(path);
    const Io::HostScope hosting(files);
    const std::optional<Contents> made = contentsOf(path);
    if (!disk || !made) return;
    if (disk->type != made->type) {
        diagnostic.hint = "the formats differ";
        return;
    }
    const Buffer::AreaList areas = Buffer::differences(disk->image, made->image);
    const bool isRaw = made->type == Io::Import::InFileType::RawBinary;
    diagnostic.hint =
        areas.empty() ? "the bytes of the images are the same, the text differs"
                      : (isRaw ? "they differ at the offsets " : "they differ at the addresses ") +
                            textOf(areas);
    diagnostic.notes = notesOn(areas, *disk, *made, output, record);
}

}  // namespace

bool compareWithDisk(OutputSet& files, const Inspect::RunRecord& record, DiagnosticSink& sink) {
    bool isEqual = true;
    for (const std::string& path : files.outputs()) {
        const auto disk = Platform::readFile(path);
        if (disk && disk->text() == files.contentsOf(path)) continue;
        isEqual = false;
        Diagnostic diagnostic{};
        diagnostic.name = "differs";
        diagnostic.text = path + (disk ? " is not what the script makes today" : " is missing");
        const auto output = std::ranges::find_if(record.outputs, [&path](const auto& file) {
            return file.path == path || path.ends_with("/" + file.path);
        });
        if (disk && output != record.outputs.end())
            explain(diagnostic, files, *output, path, record);
        sink.take(diagnostic);
    }
    return isEqual;
}

}  // namespace Strict
