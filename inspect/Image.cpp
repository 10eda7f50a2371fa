#include "inspect/Image.hpp"

#include <algorithm>
#include <memory>

#include "buffer/Overlap.hpp"
#include "io/InFile.hpp"
#include "io/field/FieldFormat.hpp"
#include "io/field/FieldReading.hpp"
#include "io/import/elf/ElfInFile.hpp"
#include "io/import/titxt/TiTxtInFile.hpp"
#include "io/import/uf2/Uf2InFile.hpp"
#include "util/Hex.hpp"

namespace Inspect {

namespace {

using Buffer::Area;
using Buffer::AreaList;
using Buffer::MemoryBuffer;

/// A span up to this length is one image; its gaps cost a bit an address at most.
constexpr std::uint64_t longestWhole = std::uint64_t{1} << 28U;
/// A gap from here on divides a longer one.
constexpr std::uint64_t dividingGap = std::uint64_t{1} << 20U;

Parts partsOf(Io::Import::TessaronImportApi& file) {
    Parts parts;
    if (file.getDataLength() <= longestWhole) {
        if (file.getDataLength() != 0) parts.push_back(file.takeMemory());
        return parts;
    }
    for (const Area& area : joined(file.getDataAreas(), dividingGap))
        parts.push_back(file.getMemory(area.start, area.length));
    return parts;
}

/// A reader for what the file is; null after a report.
std::unique_ptr<Io::Import::TessaronImportApi> readerOf(const std::string& path) {
    const std::string format = formatOf(path);
    if (format == "ELF") return std::make_unique<Io::Import::ElfInFile>(path);
    if (format == "UF2") return std::make_unique<Io::Import::Uf2InFile>(path);
    if (format == "TI-TXT") return std::make_unique<Io::Import::TiTxtInFile>(path);
    return Io::Field::FieldReading().open(path, Buffer::OverlapRule::NotSet);
}

}  // namespace

AreaList Image::areas() const {
    AreaList all;
    for (const MemoryBuffer& part : parts) {
        const AreaList some = Buffer::writtenAreas(part, part.getArea());
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

AreaList joined(AreaList areas, std::uint64_t gap) {
    std::ranges::sort(areas, {}, &Area::start);
    AreaList wide;
    for (const Area& area : areas) {
        if (wide.empty() || area.start > wide.back().end() + gap) {
            wide.push_back(area);
        } else {
            const std::uint64_t end = std::max(wide.back().end(), area.end());
            wide.back().length = end - wide.back().start;
        }
    }
    return wide;
}

std::string formatOf(const std::string& path) {
    const Io::Field::FieldFormat format = Io::Field::fieldFormatOf(path, Io::openInput(path));
    if (const auto* const records = std::get_if<Facts::RecordFormat>(&format))
        return *records == Facts::RecordFormat::IntelHex ? "Intel HEX" : "S-records";
    if (std::holds_alternative<Io::Field::RawFormat>(format)) return "raw bytes";
    switch (std::get<Facts::ForeignFormat>(format)) {
        case Facts::ForeignFormat::Elf:
            return "ELF";
        case Facts::ForeignFormat::Uf2:
            return "UF2";
        case Facts::ForeignFormat::TiTxt:
            return "TI-TXT";
        case Facts::ForeignFormat::NoRecords:
            break;
    }
    return "no image";
}

std::optional<Image> openImage(const std::string& path) {
    const auto file = readerOf(path);
    if (file == nullptr) return std::nullopt;
    Image image;
    image.path = path;
    image.format = formatOf(path);
    if (file->hasStartAddress()) image.startAddress = file->getStartAddress();
    image.parts = partsOf(*file);
    return image;
}

std::uint64_t byteCount(const AreaList& areas) {
    std::uint64_t count = 0;
    for (const Area& area : areas) count += area.length;
    return count;
}

const MemoryBuffer* partWith(const Parts& parts, const Area& area) {
    const auto found = std::ranges::find_if(
        parts, [&area](const MemoryBuffer& part) { return part.getArea().contains(area); });
    return found == parts.end() ? nullptr : &*found;
}

}  // namespace Inspect
