#include "io/field/FieldInFile.hpp"

#include <algorithm>
#include <utility>

#include "facts/Listener.hpp"
#include "io/field/IntelHexFieldParser.hpp"
#include "io/field/SRecordFieldParser.hpp"
#include "io/import/OverlapSearch.hpp"

namespace Io::Field {

namespace {

std::unique_ptr<FieldParser> makeParser(const std::string& path, Facts::InputFormat format,
                                        std::uint64_t fileSize, std::uint32_t addressUnit) {
    std::unique_ptr<FieldParser> parser;
    if (format == Facts::InputFormat::IntelHex)
        parser = std::make_unique<IntelHexFieldParser>(path, fileSize);
    else
        parser = std::make_unique<SRecordFieldParser>(path, fileSize);
    parser->data().bytes().setAddressUnit(addressUnit);
    return parser;
}

/// Finds the lines that gave bytes, by their places among all bytes of the file.
class LineSearch final : public Import::RecordVisitor {
public:
    explicit LineSearch(const std::vector<std::size_t>& offsets) : lines_(offsets.size()) {
        for (std::size_t i = 0; i < offsets.size(); ++i) wanted_.emplace_back(offsets[i], i);
        std::ranges::sort(wanted_);
        next_ = wanted_.begin();
    }

    void visit(const Import::RecordLines& records) override {
        const std::size_t end = read_ + static_cast<std::size_t>(records.count) * records.size;
        for (; next_ != wanted_.end() && next_->first < end; ++next_)
            lines_[next_->second] = records.firstLine + (next_->first - read_) / records.size;
        read_ = end;
    }

    std::vector<std::uint64_t> takeLines() { return std::move(lines_); }

private:
    using Wanted = std::vector<std::pair<std::size_t, std::size_t>>;

    std::vector<std::uint64_t> lines_;
    Wanted wanted_;  ///< a place and where its line goes in the list
    Wanted::const_iterator next_;
    std::size_t read_ = 0;
};

}  // namespace

FieldInFile::FieldInFile(const std::string& path, Platform::InputFile file,
                         Facts::InputFormat format, const Import::ReadOptions& options,
                         Import::RecordVisitor* visitor)
    : TextInFile(path), parser_(makeParser(path, format, file.size(), options.addressUnit)) {
    FieldLines lines(std::move(file));
    parser_->parse(lines, visitor);
    close(lines.textLines());
    if (options.rule == Buffer::OverlapRule::NotSet && bytes().hasOverlaps())
        reportOverlaps(lines.takeFile());
}

Buffer::MemoryBuffer FieldInFile::getMemory(std::uint64_t start, std::uint64_t length) const {
    if (length == 0) return {start, 0};
    return bytes().imageOf({start, length});
}

void FieldInFile::reportOverlaps(Platform::InputFile file) const {
    if (const std::uint32_t unit = bytes().likelyAddressUnit(); unit != 1) {
        Facts::report(Facts::AddressesCountWords{fileName_, unit});
        return;
    }
    const Import::OverlapSearch search(bytes(), FieldReports::mostListed);
    std::vector<std::size_t> offsets;
    for (const auto* found : {&search.different(), &search.equal()})
        for (const Import::RecordOverlap& overlap : found->kept)
            for (const std::size_t offset : {overlap.earlier, overlap.later})
                offsets.push_back(offset + overlap.difference.value_or(0));
    const std::vector<std::uint64_t> lines = linesOf(offsets, std::move(file));
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
std::vector<std::uint64_t> FieldInFile::linesOf(const std::vector<std::size_t>& offsets,
                                                Platform::InputFile file) const {
    LineSearch search(offsets);
    walkRecords(fileName_, std::move(file), getFormat(), bytes().addressUnit(), search);
    return search.takeLines();
}

void walkRecords(const std::string& path, Platform::InputFile file, Facts::InputFormat format,
                 std::uint32_t addressUnit, Import::RecordVisitor& visitor) {
    Facts::Unheard unheard;
    const Facts::ListenerScope listening(unheard);
    const auto parser = makeParser(path, format, file.size(), addressUnit);
    FieldLines lines(std::move(file));
    parser->walk(lines, visitor);
}

}  // namespace Io::Field
