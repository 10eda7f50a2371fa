#include "parser/commands/CmdNewBuffer.hpp"

#include <algorithm>
#include <deque>
#include <exception>
#include <memory>
#include <utility>

#include "io/InFile.hpp"
#include "io/import/Malformed.hpp"
#include "parser/commands/BytePattern.hpp"
#include "parser/commands/Conventions.hpp"
#include "parser/commands/Layering.hpp"
#include "platform/Paths.hpp"

namespace Parser::WrapperLib {

namespace {

using Buffer::MemoryBuffer;
using Buffer::OverlapRule;
using Io::Import::TessaronImportApi;

/// A range of 0 and 0 counts as not given.
bool isGiven(const Area& range) {
    return range.start != 0 || range.length != 0;
}

/// The range from the lowest start to the highest end of the included areas.
class Extent {
public:
    void include(const Area& area) {
        lowestStart_ = std::min(lowestStart_, area.start);
        highestEnd_ = std::max(highestEnd_, area.end());
    }

    Area range() const {
        // A start that never came below the value that the search began with counts as 0.
        const std::uint64_t start = lowestStart_ < searchStart ? lowestStart_ : 0;
        return {start, highestEnd_ - start};
    }

private:
    static constexpr std::uint64_t searchStart = 0xFFFFFFFF;
    std::uint64_t lowestStart_ = searchStart;
    std::uint64_t highestEnd_ = 0;
};

/// Overlays `part`, or moves it in if it has the very same range: then every element is replaced
/// anyway, and no second image need be filled.
void overlayOrReplace(MemoryBuffer& result, MemoryBuffer part) {
    if (part.getArea() == result.getArea())
        result = std::move(part);
    else
        result.overlay(part);
}

/// A new image of `range` that holds the parts of `source` which lie in the areas, or all of it
/// when there are none.
MemoryBuffer extractAreas(const MemoryBuffer& source, const AreaList& areas, const Area& range) {
    MemoryBuffer extract(range.start, range.length);
    if (areas.empty()) extract.overlay(source);
    for (const Area& area : areas)
        if (const auto part = area.clippedTo(source.getArea()))
            overlayOrReplace(extract, source.extractMemory(part->start, part->length));
    extract.setByteOrder(source.getByteOrder());
    return extract;
}

/// The addresses of an image that one of `range` has as well; all of them if none is given.
Area takenOf(const Area& image, const Area& range) {
    if (!isGiven(range)) return image;
    const Area none{image.start, 0};
    if (image.length == 0 || range.length == 0) return none;
    return image.clippedTo(range).value_or(none);
}

}  // namespace

void CmdNewBuffer::setBufferName(std::string name) {
    bufferName_ = std::move(name);
}

void CmdNewBuffer::setFile(std::string argument) {
    setPath(cleanedPath(std::move(argument)), nullptr);
}

void CmdNewBuffer::setFileOf(std::string argument, const Io::Formats::InputFormatRow& format) {
    setPath(cleanedPath(std::move(argument)), &format);
}

void CmdNewBuffer::setPath(std::string path, const Io::Formats::InputFormatRow* format) {
    fileName_ = std::move(path);
    format_ = format;
    sourceKind_ = BufferSourceKind::SourceFile;
}

void CmdNewBuffer::setValues(std::vector<std::uint32_t> list) {
    values_ = std::move(list);
    sourceKind_ = BufferSourceKind::SourceValues;
}

void CmdNewBuffer::addSourceBuffer(std::string name) {
    sourceBuffers_.push_back(std::move(name));
    sourceKind_ = BufferSourceKind::SourceBuffers;
}

void CmdNewBuffer::setNewStartAddress(std::uint32_t address) {
    newStartAddress_ = address;
    hasNewStartAddress_ = true;
}

bool CmdNewBuffer::execute(CmdContext& context) {
    return guarded(Facts::Subject::Buffer, bufferName_, Facts::Work::Created, [&] {
        std::optional<MemoryBuffer> result = build(context);
        if (!result) return false;
        result->setByteOrder(byteOrder_);
        const std::uint64_t built = result->getStartAddress();
        if (hasNewStartAddress_) result->setStartingAddress(newStartAddress_);
        const std::uint64_t distance = result->getStartAddress() - built;
        const auto [entry, isNew] = context.buffers.try_emplace(bufferName_, std::move(*result));
        if (isNew && context.observer != nullptr)
            context.observer->onMade(bufferName_, entry->second, distance);
        return true;
    });
}

std::optional<MemoryBuffer> CmdNewBuffer::build(CmdContext& context) {
    if (!sections_.isEmpty() && !hasSections()) {
        const auto& names = sections_.used.empty() ? sections_.skipped : sections_.used;
        Facts::report(
            Facts::SectionUnfit{fileName_, names.front(), Facts::SectionFault::NoSections, {}});
        return std::nullopt;
    }
    const bool isNamed = sourceKind_ == BufferSourceKind::SourceFile && format_ != nullptr;
    if (family_ && !(isNamed && format_->hasFamilies)) {
        Facts::report(
            Facts::FamilyUnfit{fileName_, Facts::FamilyFault::NoFamilies, *family_, 0, {}});
        return std::nullopt;
    }
    if (sourceKind_ != BufferSourceKind::SourceFile && !mayCountWords("this source", false))
        return std::nullopt;
    if (!arrangement_.isPossible(bufferName_, sourceBuffers_.size())) return std::nullopt;
    std::optional<MemoryBuffer> image = gather(context);
    if (!image) return std::nullopt;
    return arrangement_.arranged(bufferName_, std::move(*image), context.observer);
}

std::optional<MemoryBuffer> CmdNewBuffer::gather(CmdContext& context) {
    Area range = bufferRange_;
    if (!isGiven(range) && !areas_.empty()) {
        Extent extent;
        for (const Area& area : areas_) extent.include(area);
        range = extent.range();
    }
    switch (sourceKind_) {
        case BufferSourceKind::SourceBuffers:
            return fromBuffers(context, range);
        case BufferSourceKind::SourceFile:
            return fromFile(context, range);
        case BufferSourceKind::SourceValues:
            return fromValues(context, range);
        case BufferSourceKind::SourceEmpty:
            break;
    }
    return MemoryBuffer(range.start, range.length);
}

std::optional<MemoryBuffer> CmdNewBuffer::fromBuffers(CmdContext& context, Area range) const {
    std::deque<MemoryBuffer> extracts;
    std::deque<const MemoryBuffer*> parts;  // one for each name
    for (const std::string& name : sourceBuffers_) {
        const MemoryBuffer* const source = findBuffer(context, name);
        if (source == nullptr) return std::nullopt;
        // Without areas an extract would equal its source. A range is that of the sources, and of
        // lanes there is no common image that it could apply to: an extract has what the common
        // image takes, and a lane all that is asked for.
        const bool isLane = arrangement_.interleave.has_value();
        if (areas_.empty() && !(isLane && isGiven(range))) {
            parts.push_back(source);
            continue;
        }
        const Area own = isLane && isGiven(range) ? range : takenOf(source->getArea(), range);
        parts.push_back(&extracts.emplace_back(extractAreas(*source, areas_, own)));
    }
    if (arrangement_.interleave)
        return arrangement_.interleaved(bufferName_, sourceBuffers_,
                                        std::vector(parts.begin(), parts.end()), context.observer);
    if (!isGiven(range)) {
        Extent extent;
        for (const MemoryBuffer* part : parts) extent.include(part->getArea());
        range = extent.range();
    }
    MemoryBuffer result(range.start, range.length);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (context.observer != nullptr)
            context.observer->onOverlay(*this, result, sourceBuffers_[i], *parts[i]);
        if (!lay(result, *parts[i], overlapRule_, sourceBuffers_[i], target())) return std::nullopt;
    }
    return result;
}

std::optional<MemoryBuffer> CmdNewBuffer::fromFile(const CmdContext& context, Area range) {
    try {
        return readFile(context, range);
    } catch (const Io::Import::Malformed&) {
        return std::nullopt;
    } catch (const std::exception&) {
        Facts::report(Facts::FileNotOpened{fileName_});
        return std::nullopt;
    }
}

/// Reports an address unit where the addresses of `format` cannot count words.
bool CmdNewBuffer::mayCountWords(std::string_view format, bool mayCount) const {
    if (!addressUnit_ || mayCount) return true;
    Facts::report(Facts::AddressUnitRefused{Facts::Subject::Buffer, bufferName_, format});
    return false;
}

/// The format has a source of its own and is read as a whole or not at all, so that, unless the
/// statement has a rule, nothing is lost where the file contradicts itself.
bool CmdNewBuffer::isWhole() const {
    return format_ != nullptr && !Io::Formats::isOfRecords(*format_) &&
           overlapRule_ == OverlapRule::NotSet;
}

bool CmdNewBuffer::hasSections() const {
    return sourceKind_ == BufferSourceKind::SourceFile && format_ != nullptr &&
           format_->openSections != nullptr;
}

std::unique_ptr<TessaronImportApi> CmdNewBuffer::openFile(const CmdContext& context) {
    if (reader_ != nullptr) return std::move(reader_);
    const std::string path = Platform::terminatedPath(fileName_);
    const Io::Import::ReadOptions options{overlapRule_, addressUnit(), family_};
    if (format_ == nullptr) return context.reading->open(path, options);
    if (!sections_.isEmpty())
        return format_->openSections(path, Io::openInput(path), options, sections_);
    return format_->open(path, Io::openInput(path), options, nullptr);
}

std::optional<MemoryBuffer> CmdNewBuffer::readFile(const CmdContext& context, Area range) {
    const std::unique_ptr<TessaronImportApi> reader = openFile(context);
    if (!reader) return std::nullopt;
    const auto& row = Io::Formats::rowOf(reader->getFormat());
    if (!mayCountWords(row.name, row.mayCountWords)) return std::nullopt;
    if (!isGiven(range)) range = {reader->getMinAddress(), reader->getDataLength()};
    const bool isRaw = format_ != nullptr && format_->format == Facts::InputFormat::RawBinary;
    if (!isRaw && range.length > context.longestFile) {
        Facts::report(Facts::FileSpanTooLong{range.length});
        return std::nullopt;
    }
    if (overlapRule_ == OverlapRule::First) reader->preferFirst();
    if (isRefusing(overlapRule_) || isWhole())
        if (const auto overlap = reader->findOverlap(overlapRule_ != OverlapRule::Error))
            if (refuses(overlapRule_, *overlap, fileName_, *reader, addressUnit(), target()))
                return std::nullopt;
    if (context.observer != nullptr) context.observer->onRead(*this, *reader, range);
    MemoryBuffer result(range.start, range.length);
    if (areas_.empty()) overlayOrReplace(result, reader->takeMemory());
    for (const Area& area : areas_)
        overlayOrReplace(result, reader->getMemory(area.start, area.length));
    return result;
}

MemoryBuffer CmdNewBuffer::fromValues(const CmdContext& context, Area range) const {
    const ByteList bytes = bytesOf(values_, valueSize_, byteOrder_);
    MemoryBuffer source(0, bytes.size());
    source.writePattern(bytes, 0, bytes.size());
    MemoryBuffer result = extractAreas(source, areas_, isGiven(range) ? range : source.getArea());
    if (context.observer != nullptr)
        for (const Area& area : Buffer::writtenAreas(result, result.getArea()))
            context.observer->onWrite({}, area);
    return result;
}

}  // namespace Parser::WrapperLib
