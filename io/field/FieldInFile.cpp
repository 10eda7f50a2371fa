#include "io/field/FieldInFile.hpp"

#include <algorithm>
#include <ranges>
#include <utility>

#include "facts/Listener.hpp"
#include "io/field/IntelHexFieldParser.hpp"
#include "io/field/SRecordFieldParser.hpp"
#include "io/import/OverlapSearch.hpp"

namespace Io::Field {

namespace {

std::unique_ptr<FieldParser> makeParser(const std::string& path, Facts::RecordFormat format,
                                        std::uint64_t fileSize) {
    if (format == Facts::RecordFormat::IntelHex)
        return std::make_unique<IntelHexFieldParser>(path, fileSize);
    return std::make_unique<SRecordFieldParser>(path, fileSize);
}

}  // namespace

FieldInFile::FieldInFile(const std::string& path, Platform::InputFile file,
                         Facts::RecordFormat format, Buffer::OverlapRule rule)
    : TextInFile(path), parser_(makeParser(path, format, file.size())) {
    FieldLines lines(std::move(file));
    parser_->parse(lines);
    close(lines.textLines());
    if (rule == Buffer::OverlapRule::NotSet && bytes().hasOverlaps()) reportOverlaps();
}

Buffer::MemoryBuffer FieldInFile::getMemory(std::uint64_t start, std::uint64_t length) const {
    if (length == 0) return {start, 0};
    return bytes().imageOf({start, length});
}

void FieldInFile::reportOverlaps() const {
    const Import::OverlapSearch search(bytes(), FieldReports::mostListed);
    std::vector<std::size_t> offsets;
    for (const auto* found : {&search.different(), &search.equal()})
        for (const Import::RecordOverlap& overlap : found->kept)
            for (const std::size_t offset : {overlap.earlier, overlap.later})
                offsets.push_back(offset + overlap.difference.value_or(0));
    const std::vector<std::uint64_t> lines = linesOf(offsets);
    auto line = lines.begin();
    const auto byteAt = [this](std::size_t offset) { return bytes().bytesOf({{0, 1}, offset})[0]; };
    for (const Import::RecordOverlap& overlap : search.different().kept) {
        const std::size_t at = overlap.difference.value_or(0);
        const std::uint64_t earlierLine = *line++;
        const std::uint64_t laterLine = *line++;
        Facts::report(Facts::RecordsConflict{fileName_, overlap.area.start, overlap.area.end(),
                                             overlap.area.start + at, byteAt(overlap.earlier + at),
                                             earlierLine, byteAt(overlap.later + at), laterLine});
    }
    for (const Import::RecordOverlap& overlap : search.equal().kept) {
        const std::uint64_t earlierLine = *line++;
        const std::uint64_t laterLine = *line++;
        Facts::report(Facts::RecordsOverlap{fileName_, overlap.area.start, overlap.area.end(),
                                            earlierLine, laterLine});
    }
    for (const auto* found : {&search.different(), &search.equal()})
        if (found->count > found->kept.size())
            Facts::report(Facts::FurtherOverlaps{fileName_, found == &search.different(),
                                                 found->count - found->kept.size()});
}

/// The lines that gave the bytes of the given places among all bytes of the file. One more pass
/// over the file finds them all.
std::vector<std::uint64_t> FieldInFile::linesOf(const std::vector<std::size_t>& offsets) const {
    std::vector<std::pair<std::size_t, std::size_t>>
        wanted;  // the offset and its place in the list
    for (std::size_t i = 0; i < offsets.size(); ++i) wanted.emplace_back(offsets[i], i);
    std::ranges::sort(wanted);
    std::vector<std::uint64_t> numbers(offsets.size());
    FieldLines lines(openInput(fileName_));
    std::size_t read = 0;
    auto next = wanted.begin();
    while (next != wanted.end() && lines.next()) {
        read += parser_->dataSizeOf(lines.line());
        for (; next != wanted.end() && next->first < read; ++next)
            numbers[next->second] = lines.number();
    }
    return numbers;
}

std::uint64_t FieldInFile::findLine(std::uint64_t address) const {
    std::size_t offset = 0;
    std::optional<std::size_t> found;
    for (const Import::SourceRun& run : parser_->data().sources()) {
        if (address - run.area.start < run.area.length)
            found = offset + static_cast<std::size_t>(address - run.area.start);
        offset += static_cast<std::size_t>(run.area.length);
    }
    return found ? linesOf({*found}).front() : 0;
}

}  // namespace Io::Field
