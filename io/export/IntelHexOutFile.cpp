#include "io/export/IntelHexOutFile.hpp"

#include <algorithm>
#include <array>
#include <exception>
#include <utility>

#include "facts/Listener.hpp"

namespace Io::Export {

namespace {

constexpr std::uint32_t shortestRecord = 1;
/// The count field has one byte.
constexpr std::uint32_t longestRecord = 255;
constexpr std::uint64_t blockSize = 0x10000;

void writeRecord(PieceWriter& out, std::uint64_t address, IntelRecordType type,
                 std::span<const std::uint8_t> data) {
    char* const place = out.reserve(intelRecordLength(data.size()) + textSlack);
    out.commit(
        writeIntelRecord(place, static_cast<std::uint16_t>(address), typeByteOf(type), data));
}

void reportLength(std::uint32_t length, Facts::Bound bound, std::uint32_t allowed) {
    Facts::report(
        Facts::RecordLengthCorrected{Facts::OutputFormat::IntelHex, length, bound, allowed});
}

}  // namespace

IntelHexOutFile::IntelHexOutFile(std::string path, IntelHexOutputStyle style)
    : TextOutFile(std::move(path)), outputStyle_(style) {
    std::uint32_t& length = outputStyle_.dataRecordLength;
    if (length < shortestRecord) reportLength(length, Facts::Bound::Minimum, shortestRecord);
    if (length > longestRecord) reportLength(length, Facts::Bound::Maximum, longestRecord);
    length = std::clamp(length, shortestRecord, longestRecord);
    if (const std::uint32_t whole = wholeWords(length, outputStyle_.addressUnit); whole != length) {
        reportLength(length, whole < length ? Facts::Bound::Maximum : Facts::Bound::Minimum, whole);
        length = whole;
    }
}

void IntelHexOutFile::insert(const ImageView& image) {
    const unsigned shift = outputStyle_.useSegmentAddressing ? 4 : 16;
    const std::uint32_t unit = outputStyle_.addressUnit;
    for (std::size_t at = 0; at < image.elements.size();) {
        const std::uint64_t address = (image.startAddress + at) / unit;
        const std::uint64_t room = (((address >> shift) << shift) + blockSize - address) * unit;
        const std::size_t length = std::min<std::uint64_t>(image.elements.size() - at, room);
        const ImageView block = image.part(at, length);
        if (hasStretches(block)) memoryBuffers_.push_back(block);
        at += length;
    }
}

void IntelHexOutFile::setExecutionAddress(std::uint64_t address) {
    hasExecutionAddress_ = true;
    executionAddress_ = address;
}

OffsetInformation IntelHexOutFile::setOffsetInformation(std::uint64_t startAddress) const {
    constexpr std::uint64_t linearEnd = 0x100000000;
    constexpr std::uint64_t segmentEnd = 0x100000;
    OffsetInformation information{};
    information.startAddress = startAddress;
    if (outputStyle_.useSegmentAddressing) {
        information.isValid = startAddress < segmentEnd;
        information.recordType = IntelRecordType::ExtendedSegmentAddress;
        information.base = startAddress >> 4U;
        information.offset = startAddress & 0xFU;
    } else {
        information.isValid = startAddress < linearEnd;
        information.recordType = IntelRecordType::ExtendedLinearAddress;
        information.base = startAddress >> 16U;
        information.offset = startAddress & 0xFFFFU;
    }
    if (!information.isValid) Facts::report(Facts::AddressNotExpressible{startAddress, fileName_});
    return information;
}

std::string IntelHexOutFile::getStringRepresentationFor(
    std::uint64_t address, IntelRecordType recordType,
    std::span<const Buffer::MemoryElement> elements) {
    if (recordType == IntelRecordType::Unknown ||
        recordType > IntelRecordType::StartLinearAddress) {
        Facts::report(Facts::RecordTypeUnknown{static_cast<std::uint32_t>(recordType)});
        throw std::exception();
    }
    std::vector<std::uint8_t> data(elements.size());
    std::ranges::transform(elements, data.begin(), &Buffer::MemoryElement::effectiveByte);
    std::string text(intelRecordLength(data.size()) + textSlack, '\0');
    writeIntelRecord(text.data(), static_cast<std::uint16_t>(address), typeByteOf(recordType),
                     data);
    text.resize(intelRecordLength(data.size()));
    return text;
}

void IntelHexOutFile::saveToFile() {
    // Before the file is touched: one block out of reach cancels all of it.
    for (const ImageView& block : memoryBuffers_)
        if (!setOffsetInformation(block.startAddress / outputStyle_.addressUnit).isValid) return;
    PieceWriter out = startOutput();
    for (const ImageView& block : memoryBuffers_) writeBlock(out, block);
    if (hasExecutionAddress_) writeStartRecord(out);
    writeRecord(out, 0, IntelRecordType::EndOfFile, {});
    out.finish();
}

void IntelHexOutFile::writeBlock(PieceWriter& out, const ImageView& block) const {
    const std::uint32_t unit = outputStyle_.addressUnit;
    const OffsetInformation information = setOffsetInformation(block.startAddress / unit);
    writeRecord(out, 0, information.recordType,
                std::array{static_cast<std::uint8_t>(information.base >> 8U),
                           static_cast<std::uint8_t>(information.base)});
    const std::size_t length = outputStyle_.dataRecordLength;
    forStretches(block, [&](const ImageView& stretch) {
        std::uint64_t offset =
            information.offset + (stretch.startAddress - block.startAddress) / unit;
        forEffectiveBytes(stretch.elements, length, [&](std::span<const std::uint8_t> data) {
            writeRecord(out, offset, IntelRecordType::Data, data);
            offset += data.size() / unit;
        });
    });
}

void IntelHexOutFile::writeStartRecord(PieceWriter& out) const {
    const std::uint64_t a = executionAddress_ / outputStyle_.addressUnit;
    const auto byte = [](std::uint64_t value) { return static_cast<std::uint8_t>(value); };
    if (outputStyle_.useSegmentAddressing)
        // The code segment and, with the paragraph's offset, the instruction pointer.
        writeRecord(out, 0, IntelRecordType::StartSegmentAddress,
                    std::array{byte(a >> 12U), byte(a >> 4U), byte(0), byte(a & 0xFU)});
    else
        writeRecord(out, 0, IntelRecordType::StartLinearAddress,
                    std::array{byte(a >> 24U), byte(a >> 16U), byte(a >> 8U), byte(a)});
}

}  // namespace Io::Export
