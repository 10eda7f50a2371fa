#include "io/import/elf/ElfInFile.hpp"

#include <algorithm>
#include <optional>

namespace Io::Import {

namespace {

ParsedData dataOf(const ElfFile& file) {
    std::uint64_t total = 0;
    for (const ElfSegment& segment : file.segments()) total += segment.length;
    ParsedData data(Facts::InputFormat::Elf, static_cast<std::size_t>(total));
    for (const ElfSegment& segment : file.segments())
        data.appendRead(
            segment.address, static_cast<std::size_t>(segment.length),
            [&](std::span<std::uint8_t> out) { file.readAll(segment.fileOffset, out); });
    data.finish();
    return data;
}

}  // namespace

ElfInFile::ElfInFile(std::unique_ptr<const ElfFile> file)
    : AddressedData(dataOf(*file),
                    file->entry() == 0 ? std::nullopt : std::optional(file->entry())),
      file_(std::move(file)) {}

Buffer::AreaList ElfInFile::getSegments() const {
    Buffer::AreaList areas;
    for (const ElfSegment& segment : file_->segments())
        areas.push_back({segment.address, segment.length});
    return areas;
}

}  // namespace Io::Import
