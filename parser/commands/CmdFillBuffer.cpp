#include "parser/commands/CmdFillBuffer.hpp"

#include <algorithm>
#include <boost/algorithm/string/trim.hpp>
#include <utility>

#include "parser/commands/Conventions.hpp"

namespace Parser::WrapperLib {

namespace {

using Buffer::MemoryElement;

/// Only the low eight bits of a value count.
template <class Bytes>
std::vector<MemoryElement> writtenElements(const Bytes& bytes) {
    std::vector<MemoryElement> pattern;
    pattern.reserve(bytes.size());
    for (const auto byte : bytes) pattern.push_back({static_cast<std::uint8_t>(byte), 0, 1});
    return pattern;
}

std::vector<MemoryElement> fillerElements(const std::vector<std::uint32_t>& bytes) {
    std::vector<MemoryElement> pattern;
    pattern.reserve(bytes.size());
    for (const auto byte : bytes) pattern.push_back({0, static_cast<std::uint8_t>(byte), 0});
    return pattern;
}

}  // namespace

void CmdFillBuffer::setBufferName(std::string name) {
    bufferName = std::move(name);
}

void CmdFillBuffer::setFillPattern(std::vector<std::uint32_t> bytes) {
    values = std::move(bytes);
    fillKind = FillKind::FillFiller;
}

void CmdFillBuffer::setFillValues(std::vector<std::uint32_t> bytes) {
    values = std::move(bytes);
    fillKind = FillKind::FillValues;
}

void CmdFillBuffer::setFillString(std::string text) {
    boost::algorithm::trim(text);
    values.assign(text.begin(), text.end());
    fillKind = FillKind::FillString;
}

void CmdFillBuffer::setFillCrc(std::string name) {
    crcName = std::move(name);
    fillKind = FillKind::FillCrc;
}

void CmdFillBuffer::setFillHash(std::string name) {
    hashName = std::move(name);
    fillKind = FillKind::FillHash;
}

bool CmdFillBuffer::execute(CmdContext& context) {
    return guarded("Buffer", bufferName, "filled", [&] { return fill(context); });
}

bool CmdFillBuffer::fill(CmdContext& context) {
    Buffer::MemoryBuffer* const buffer = findBuffer(context, bufferName);
    if (buffer == nullptr) return false;
    switch (fillKind) {
        case FillKind::FillFiller:
            clippedFill(*buffer, fillerElements(values));
            return true;
        case FillKind::FillValues:
            clippedFill(*buffer, writtenElements(values));
            return true;
        case FillKind::FillString:
            oneShotFill(*buffer, writtenElements(values));
            return true;
        case FillKind::FillCrc: {
            const ByteList* const crc = findCrc(context, crcName);
            if (crc == nullptr) return false;
            plainFill(*buffer, writtenElements(inOrderOf(*buffer, *crc)));
            return true;
        }
        case FillKind::FillHash: {
            const ByteList* const hash = findHash(context, hashName);
            if (hash == nullptr) return false;
            plainFill(*buffer, writtenElements(*hash));
            return true;
        }
        case FillKind::FillNone:
            break;
    }
    return true;
}

void CmdFillBuffer::clippedFill(Buffer::MemoryBuffer& buffer, const Pattern& pattern) const {
    const std::uint64_t start = buffer.getStartAddress();
    const std::uint64_t end = start + buffer.getDataLength();
    if (areas.empty()) buffer.fillMemory(pattern, start, buffer.getDataLength());
    for (const Area& area : areas) {
        const std::uint64_t areaEnd = area.start + area.length;
        if (areaEnd - 1 < start || area.start > end - 1) continue;
        const std::uint64_t first = std::max(start, area.start);
        buffer.fillMemory(pattern, first, std::min(end, areaEnd) - first);
    }
}

void CmdFillBuffer::oneShotFill(Buffer::MemoryBuffer& buffer, const Pattern& pattern) const {
    for (const Area& area : areas) buffer.fillMemory(pattern, area.start, pattern.size());
}

void CmdFillBuffer::plainFill(Buffer::MemoryBuffer& buffer, const Pattern& pattern) const {
    if (areas.empty()) buffer.fillMemory(pattern, buffer.getStartAddress(), buffer.getDataLength());
    for (const Area& area : areas) buffer.fillMemory(pattern, area.start, area.length);
}

ByteList CmdFillBuffer::inOrderOf(const Buffer::MemoryBuffer& buffer, ByteList crc) const {
    const bool isOwnOrder = byteOrder != Buffer::ByteOrder::NotSet;
    const Buffer::ByteOrder order = isOwnOrder ? byteOrder : buffer.getByteOrder();
    if (order == Buffer::ByteOrder::BigEndian) std::ranges::reverse(crc);
    return crc;
}

}  // namespace Parser::WrapperLib
