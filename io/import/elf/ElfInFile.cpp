#include "io/import/elf/ElfInFile.hpp"

#include <algorithm>
#include <optional>
#include <utility>

namespace Io::Import {

namespace {

ParsedData dataOf(const ElfFile& file, const std::vector<ElfSegment>& segments) {
    std::uint64_t total = 0;
    for (const ElfSegment& segment : segments) total += segment.length;
    ParsedData data(Facts::InputFormat::Elf, static_cast<std::size_t>(total));
    for (const ElfSegment& segment : segments)
        data.appendRead(
            segment.address, static_cast<std::size_t>(segment.length),
            [&](std::span<std::uint8_t> out) { file.readAll(segment.fileOffset, out); });
    data.finish();
    return data;
}

std::vector<ElfSegment> chosenOf(const ElfFile& file, const SectionChoice* choice) {
    return choice == nullptr ? file.segments() : file.chosen(*choice);
}

}  // namespace

ElfInFile::ElfInFile(std::unique_ptr<const ElfFile>&& file, const SectionChoice* choice)
    : ElfInFile(std::move(file), chosenOf(*file, choice)) {}

ElfInFile::ElfInFile(std::unique_ptr<const ElfFile>&& file, std::vector<ElfSegment> segments)
    : AddressedData(dataOf(*file, segments),
                    file->entry() == 0 ? std::nullopt : std::optional(file->entry())),
      file_(std::move(file)),
      segments_(std::move(segments)) {}

Buffer::AreaList ElfInFile::getSegments() const {
    Buffer::AreaList areas;
    for (const ElfSegment& segment : segments_) areas.push_back({segment.address, segment.length});
    return areas;
}

}  // namespace Io::Import
