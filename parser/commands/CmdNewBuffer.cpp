#include "parser/commands/CmdNewBuffer.hpp"

#include <algorithm>
#include <deque>
#include <exception>
#include <ios>
#include <memory>
#include <utility>

#include "io/import/GenericInFile.hpp"
#include "parser/commands/Conventions.hpp"
#include "util/Report.hpp"

namespace Parser::WrapperLib {

namespace {

using Buffer::MemoryBuffer;
using Io::Import::GenericInFile;
using Io::Import::TessaronImportApi;

/// Longest range that FROM_FILE takes; a file beyond it is more likely two far apart records.
constexpr std::uint64_t longestFile = 0xFFFFFFF;

/// A range of 0 and 0 counts as not given.
bool isGiven(const Area& range) {
    return range.start != 0 || range.length != 0;
}

Area rangeOf(const MemoryBuffer& buffer) {
    return {buffer.getStartAddress(), buffer.getDataLength()};
}

/// From the lowest start to the highest end of what it was shown.
class Span {
public:
    void include(const Area& area) {
        lowestStart = std::min(lowestStart, area.start);
        highestEnd = std::max(highestEnd, area.start + area.length);
    }

    Area range() const {
        // A start that never came below the value that the search began with counts as 0.
        const std::uint64_t start = lowestStart < searchStart ? lowestStart : 0;
        return {start, highestEnd - start};
    }

private:
    static constexpr std::uint64_t searchStart = 0xFFFFFFFF;
    std::uint64_t lowestStart = searchStart;
    std::uint64_t highestEnd = 0;
};

/// The part of `source` that lies in `area`, put into `extract`. An area outside the source is
/// passed over; the arithmetic wraps, as it does for an area of length 0 at address 0.
void overlayArea(MemoryBuffer& extract, const MemoryBuffer& source, const Area& area) {
    const std::uint64_t sourceStart = source.getStartAddress();
    const std::uint64_t sourceEnd = sourceStart + source.getDataLength();
    const std::uint64_t areaEnd = area.start + area.length;
    if (sourceStart > areaEnd - 1 || area.start > sourceEnd - 1) return;
    const std::uint64_t first = std::max(sourceStart, area.start);
    extract.overlay(source.extractMemory(first, std::min(sourceEnd, areaEnd) - first));
}

/// A new image of `range`, or of the source's own range if none is given, that holds the parts of
/// `source` which lie in the areas, or all of it when there are none.
MemoryBuffer extractAreas(const MemoryBuffer& source, const AreaList& areas, Area range) {
    if (!isGiven(range)) range = rangeOf(source);
    MemoryBuffer extract(range.start, range.length);
    if (areas.empty()) extract.overlay(source);
    for (const Area& area : areas) overlayArea(extract, source, area);
    extract.setByteOrder(source.getByteOrder());
    return extract;
}

/// Overlays `part`, or takes its place if it has the very same range: then every element is
/// replaced and no second image need be filled.
void overlayOrReplace(MemoryBuffer& result, MemoryBuffer part) {
    if (rangeOf(part) == rangeOf(result))
        result = std::move(part);
    else
        result.overlay(part);
}

}  // namespace

void CmdNewBuffer::setBufferName(std::string name) {
    bufferName = std::move(name);
}

void CmdNewBuffer::setFile(std::string argument) {
    fileName = cleanedPath(std::move(argument));
    sourceKind = BufferSourceKind::SourceFile;
}

void CmdNewBuffer::setRawFile(std::string argument) {
    setFile(std::move(argument));
    isRawFile = true;
}

void CmdNewBuffer::setValues(std::vector<std::uint32_t> list) {
    values = std::move(list);
    sourceKind = BufferSourceKind::SourceValues;
}

void CmdNewBuffer::addSourceBuffer(std::string name) {
    sourceBuffers.push_back(std::move(name));
    sourceKind = BufferSourceKind::SourceBuffers;
}

void CmdNewBuffer::setNewStartAddress(std::uint32_t address) {
    newStartAddress = address;
    hasNewStartAddress = true;
}

bool CmdNewBuffer::execute(CmdContext& context) {
    return guarded("Buffer", bufferName, "created", [&] {
        std::optional<MemoryBuffer> result = build(context);
        if (!result) return false;
        result->setByteOrder(byteOrder);
        if (hasNewStartAddress) result->setStartingAddress(newStartAddress);
        context.buffers.try_emplace(bufferName, std::move(*result));
        return true;
    });
}

std::optional<MemoryBuffer> CmdNewBuffer::build(CmdContext& context) const {
    Area range = bufferRange;
    if (!isGiven(range) && !areas.empty()) {
        Span span;
        for (const Area& area : areas) span.include(area);
        range = span.range();
    }
    switch (sourceKind) {
        case BufferSourceKind::SourceBuffers:
            return fromBuffers(context, range);
        case BufferSourceKind::SourceFile:
            return fromFile(range);
        case BufferSourceKind::SourceValues:
            return fromValues(range);
        case BufferSourceKind::SourceEmpty:
            break;
    }
    return MemoryBuffer(range.start, range.length);
}

std::optional<MemoryBuffer> CmdNewBuffer::fromBuffers(CmdContext& context, Area range) const {
    std::deque<MemoryBuffer> extracts;
    std::deque<const MemoryBuffer*> parts;
    for (const std::string& name : sourceBuffers) {
        const MemoryBuffer* const source = findBuffer(context, name);
        if (source == nullptr) return std::nullopt;
        // Without areas an extract would equal its source.
        parts.push_back(
            areas.empty() ? source : &extracts.emplace_back(extractAreas(*source, areas, Area{})));
    }
    if (!isGiven(range)) {
        Span span;
        for (const MemoryBuffer* part : parts) span.include(rangeOf(*part));
        range = span.range();
    }
    MemoryBuffer result(range.start, range.length);
    for (const MemoryBuffer* part : parts) result.overlay(*part);
    return result;
}

std::optional<MemoryBuffer> CmdNewBuffer::fromFile(Area range) const {
    try {
        return readFile(range);
    } catch (const std::exception&) {
        Util::reportLine("Error: File ", fileName, " could not be opened !");
        Util::reportLine("Operation aborted. Maybe stack overflow, buffer too big");
        return std::nullopt;
    }
}

std::optional<MemoryBuffer> CmdNewBuffer::readFile(Area range) const {
    const std::unique_ptr<TessaronImportApi> reader =
        isRawFile ? std::make_unique<GenericInFile>(fileName.c_str(), Io::Import::rawBinary)
                  : std::make_unique<GenericInFile>(fileName.c_str());
    if (!isGiven(range)) range = {reader->getMinAddress(), reader->getDataLength()};
    if (!isRawFile && range.length > longestFile) {
        Util::reportLine("Error: Buffer Length 0x", std::hex, range.length,
                         " is too big 0xFFF FFFF is the maximum!");
        Util::reportLine("Use Param -useBufferRange= to create a fixed length Buffer of the size.");
        return std::nullopt;
    }
    MemoryBuffer result(range.start, range.length);
    if (areas.empty()) overlayOrReplace(result, reader->takeMemory());
    for (const Area& area : areas)
        overlayOrReplace(result, reader->getMemory(area.start, area.length));
    return result;
}

MemoryBuffer CmdNewBuffer::fromValues(Area range) const {
    std::vector<Buffer::MemoryElement> elements;
    elements.reserve(values.size());
    // Only the low eight bits of a value count.
    for (const std::uint32_t value : values)
        elements.push_back({static_cast<std::uint8_t>(value), 0, 1});
    MemoryBuffer source(0, elements.size());
    source.fillMemory(elements, 0, elements.size());
    return extractAreas(source, areas, range);
}

}  // namespace Parser::WrapperLib
