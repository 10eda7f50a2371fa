#include "parser/commands/CmdFillBuffer.hpp"

#include <utility>

#include "parser/commands/Conventions.hpp"

namespace Parser::WrapperLib {

void CmdFillBuffer::setBufferName(std::string name) {
    bufferName_ = std::move(name);
}

void CmdFillBuffer::setFillPattern(std::vector<std::uint32_t> bytes) {
    pattern_.setNumbers(std::move(bytes));
    fillKind_ = FillKind::FillFiller;
}

void CmdFillBuffer::setFillValues(std::vector<std::uint32_t> bytes) {
    pattern_.setNumbers(std::move(bytes));
    fillKind_ = FillKind::FillValues;
}

void CmdFillBuffer::setFillString(std::string text) {
    pattern_.setText(std::move(text));
    fillKind_ = FillKind::FillString;
}

void CmdFillBuffer::setFillCrc(std::string name) {
    pattern_.setCrc(std::move(name));
    fillKind_ = FillKind::FillCrc;
}

void CmdFillBuffer::setFillHash(std::string name) {
    pattern_.setHash(std::move(name));
    fillKind_ = FillKind::FillHash;
}

void CmdFillBuffer::setFillSignature(std::string name) {
    pattern_.setSignature(std::move(name));
    fillKind_ = FillKind::FillSignature;
}

bool CmdFillBuffer::execute(CmdContext& context) {
    return guarded(Facts::Subject::Buffer, bufferName_, Facts::Work::Filled,
                   [&] { return fill(context); });
}

bool CmdFillBuffer::fill(CmdContext& context) {
    Buffer::MemoryBuffer* const buffer = findBuffer(context, bufferName_);
    if (buffer == nullptr) return false;
    const auto pattern = pattern_.bytesFor(context, buffer->getByteOrder());
    if (!pattern) return false;
    switch (fillKind_) {
        case FillKind::FillFiller:
            fillClipped(context, *buffer, &Buffer::MemoryBuffer::fillPattern, *pattern);
            break;
        case FillKind::FillValues:
            fillClipped(context, *buffer, &Buffer::MemoryBuffer::writePattern, *pattern);
            break;
        case FillKind::FillString:
            writeOnce(context, *buffer, *pattern);
            break;
        case FillKind::FillCrc:
        case FillKind::FillHash:
        case FillKind::FillSignature:
            writeUnclipped(context, *buffer, *pattern);
            break;
        case FillKind::FillNone:
            break;
    }
    return true;
}

/// Fills the areas as far as they lie in the image.
void CmdFillBuffer::fillClipped(CmdContext& context, Buffer::MemoryBuffer& buffer, Fill operation,
                                const ByteList& pattern) const {
    const Area image = buffer.getArea();
    if (areas_.empty()) put(context, buffer, operation, pattern, image);
    for (const Area& area : areas_)
        if (const auto part = area.clippedTo(image))
            put(context, buffer, operation, pattern, *part);
}

/// Writes the pattern once at the start of each area, whatever the area's length.
void CmdFillBuffer::writeOnce(CmdContext& context, Buffer::MemoryBuffer& buffer,
                              const ByteList& pattern) const {
    for (const Area& area : areas_)
        put(context, buffer, &Buffer::MemoryBuffer::writePattern, pattern,
            {area.start, pattern.size()});
}

/// Writes the pattern over the areas, which the image refuses if they leave it.
void CmdFillBuffer::writeUnclipped(CmdContext& context, Buffer::MemoryBuffer& buffer,
                                   const ByteList& pattern) const {
    constexpr Fill write = &Buffer::MemoryBuffer::writePattern;
    if (areas_.empty()) put(context, buffer, write, pattern, buffer.getArea());
    for (const Area& area : areas_) put(context, buffer, write, pattern, area);
}

/// Does the operation, and shows it to the observer unless the image refuses it.
void CmdFillBuffer::put(CmdContext& context, Buffer::MemoryBuffer& buffer, Fill operation,
                        const ByteList& pattern, const Area& area) const {
    (buffer.*operation)(pattern, area.start, area.length);
    const bool isDone = !pattern.empty() && buffer.getArea().contains(area);
    if (!isDone || context.observer == nullptr) return;
    if (operation == static_cast<Fill>(&Buffer::MemoryBuffer::fillPattern))
        context.observer->onFill(bufferName_, area);
    else
        context.observer->onWrite(bufferName_, area);
}

}  // namespace Parser::WrapperLib
