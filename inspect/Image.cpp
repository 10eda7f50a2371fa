#include "inspect/Image.hpp"

#include <algorithm>
#include <utility>

#include "buffer/Overlap.hpp"
#include "facts/Facts.hpp"
#include "facts/Listener.hpp"
#include "io/InFile.hpp"
#include "io/formats/AnyFile.hpp"
#include "io/formats/InputFormats.hpp"

namespace Inspect {

namespace {

using Buffer::Area;
using Buffer::AreaList;
using Buffer::MemoryBuffer;

/// Reports the first address for which the file has two bytes, or else that its addresses count
/// words. The readers of records report two bytes themselves, with the lines.
void reportConflict(const std::string& path, const Io::Import::TessaronImportApi& reader,
                    std::uint32_t addressUnit) {
    if (Io::Formats::isOfRecords(Io::Formats::rowOf(reader.getFormat()))) return;
    const auto overlap = reader.findOverlap(true);
    if (!overlap) {
        reportWords(path, reader, addressUnit);
        return;
    }
    Facts::report(Facts::OverlapRefused{
        Facts::Subject::Buffer, path, path, overlap->area.start, overlap->area.end(), true,
        overlap->firstDifference, overlap->earlier, overlap->later, reader.likelyAddressUnit(),
        reader.getFormat(), addressUnit});
}

}  // namespace

void reportWords(const std::string& path, const Io::Import::TessaronImportApi& reader,
                 std::uint32_t addressUnit) {
    if (addressUnit != 1 || reader.getFormat() != Facts::InputFormat::Elf) return;
    if (const std::uint32_t unit = reader.likelyAddressUnit(); unit != 1)
        Facts::report(Facts::AddressesCountWords{path, unit, true});
}

AreaList Image::areas() const {
    return Buffer::writtenAreas(data, data.getArea());
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

std::string formatText(std::optional<Facts::InputFormat> format) {
    return format ? std::string(Io::Formats::rowOf(*format).name) : "no image";
}

Image imageOf(const std::string& path, Io::Import::TessaronImportApi& reader,
              std::uint32_t addressUnit) {
    Image image{path, reader.getFormat(), MemoryBuffer(0, 0), std::nullopt};
    if (reader.hasStartAddress()) image.startAddress = reader.getStartAddress();
    reportConflict(path, reader, addressUnit);
    if (reader.getDataLength() != 0) image.data = reader.takeMemory();
    return image;
}

std::optional<Image> openImage(const std::string& path, std::optional<Facts::InputFormat> format,
                               const Io::Import::ReadOptions& options) {
    const Io::Formats::AnyFile file = Io::Formats::openAny(path, format, nullptr, options);
    if (file.reader == nullptr) return std::nullopt;
    return imageOf(path, *file.reader, options.addressUnit);
}

std::unique_ptr<Io::Import::TessaronImportApi> openReader(const std::string& path,
                                                          std::optional<Facts::InputFormat> format,
                                                          const Io::Import::ReadOptions& options) {
    Io::Formats::AnyFile file = Io::Formats::openAny(path, format, nullptr, options);
    if (file.reader != nullptr) reportConflict(path, *file.reader, options.addressUnit);
    return std::move(file.reader);
}

std::unique_ptr<Io::Import::TessaronImportApi> openSections(
    const std::string& path, const Io::Import::SectionChoice& sections, std::uint32_t addressUnit) {
    const auto& elf = Io::Formats::rowOf(Facts::InputFormat::Elf);
    auto reader = elf.openSections(path, Io::openInput(path),
                                   {Buffer::OverlapRule::NotSet, addressUnit}, sections);
    reportConflict(path, *reader, addressUnit);
    return reader;
}

std::uint64_t byteCount(const AreaList& areas) {
    std::uint64_t count = 0;
    for (const Area& area : areas) count += area.length;
    return count;
}

}  // namespace Inspect
