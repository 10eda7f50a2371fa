#include "parser/commands/CmdFillBuffer.hpp"

#include <algorithm>
#include <boost/algorithm/string/trim.hpp>
#include <utility>

#include "parser/commands/Conventions.hpp"

namespace Parser::WrapperLib {

void CmdFillBuffer::setBufferName(std::string name) {
    bufferName_ = std::move(name);
}

void CmdFillBuffer::setFillPattern(std::vector<std::uint32_t> bytes) {
    values_ = std::move(bytes);
    fillKind_ = FillKind::FillFiller;
}

void CmdFillBuffer::setFillValues(std::vector<std::uint32_t> bytes) {
    values_ = std::move(bytes);
    fillKind_ = FillKind::FillValues;
}

void CmdFillBuffer::setFillString(std::string text) {
    boost::algorithm::trim(text);
    values_.assign(text.begin(), text.end());
    fillKind_ = FillKind::FillString;
}

void CmdFillBuffer::setFillCrc(std::string name) {
    crcName_ = std::move(name);
    fillKind_ = FillKind::FillCrc;
}

void CmdFillBuffer::setFillHash(std::string name) {
    hashName_ = std::move(name);
    fillKind_ = FillKind::FillHash;
}

bool CmdFillBuffer::execute(CmdContext& context) {
    return guarded(Facts::Subject::Buffer, bufferName_, Facts::Work::Filled,
                   [&] { return fill(context); });
}

bool CmdFillBuffer::fill(CmdContext& context) {
    Buffer::MemoryBuffer* const buffer = findBuffer(context, bufferName_);
    if (buffer == nullptr) return false;
    switch (fillKind_) {
        case FillKind::FillFiller:
            fillClipped(*buffer, &Buffer::MemoryBuffer::fillPattern);
            return true;
        case FillKind::FillValues:
            fillClipped(*buffer, &Buffer::MemoryBuffer::writePattern);
            return true;
        case FillKind::FillString:
            writeOnce(*buffer);
            return true;
        case FillKind::FillCrc: {
            const ByteList* const crc = findCrc(context, crcName_);
            if (crc == nullptr) return false;
            writeUnclipped(*buffer, inOrderOf(*buffer, *crc));
            return true;
        }
        case FillKind::FillHash: {
            const ByteList* const hash = findHash(context, hashName_);
            if (hash == nullptr) return false;
            writeUnclipped(*buffer, *hash);
            return true;
        }
        case FillKind::FillNone:
            break;
    }
    return true;
}

/// Fills the areas as far as they lie in the image.
void CmdFillBuffer::fillClipped(Buffer::MemoryBuffer& buffer, Fill operation) const {
    const ByteList pattern = lowBytes(values_);
    const Area image = buffer.getArea();
    if (areas_.empty()) (buffer.*operation)(pattern, image.start, image.length);
    for (const Area& area : areas_)
        if (const auto part = area.clippedTo(image))
            (buffer.*operation)(pattern, part->start, part->length);
}

/// Writes the pattern once at the start of each area, whatever the area's length.
void CmdFillBuffer::writeOnce(Buffer::MemoryBuffer& buffer) const {
    const ByteList pattern = lowBytes(values_);
    for (const Area& area : areas_) buffer.writePattern(pattern, area.start, pattern.size());
}

/// Writes the pattern over the areas, which the image refuses if they leave it.
void CmdFillBuffer::writeUnclipped(Buffer::MemoryBuffer& buffer, const ByteList& pattern) const {
    const Area image = buffer.getArea();
    if (areas_.empty()) buffer.writePattern(pattern, image.start, image.length);
    for (const Area& area : areas_) buffer.writePattern(pattern, area.start, area.length);
}

ByteList CmdFillBuffer::inOrderOf(const Buffer::MemoryBuffer& buffer, ByteList crc) const {
    const bool isOwnOrder = byteOrder_ != Buffer::ByteOrder::NotSet;
    const Buffer::ByteOrder order = isOwnOrder ? byteOrder_ : buffer.getByteOrder();
    if (order == Buffer::ByteOrder::BigEndian) std::ranges::reverse(crc);
    return crc;
}

}  // namespace Parser::WrapperLib
