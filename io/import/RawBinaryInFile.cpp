#include "io/import/RawBinaryInFile.hpp"

#include <algorithm>
#include <utility>

#include "io/import/ParsedData.hpp"
#include "util/Report.hpp"

namespace Io::Import {

namespace {

constexpr std::string_view readerName = "RawBinaryInFile";
constexpr std::uint64_t mostBytes = 0xFFFFFFFF;

}  // namespace

RawBinaryInFile::RawBinaryInFile(const std::string& path) : BinaryInFile(path) {
    limitLength();
}

RawBinaryInFile::RawBinaryInFile(const std::string& path, Platform::InputFile file)
    : BinaryInFile(path, std::move(file)) {
    limitLength();
}

void RawBinaryInFile::limitLength() {
    dataLength = std::min(fileSize(), mostBytes);
    if (fileSize() <= mostBytes) return;
    Util::reportLine(
        "RawBinaryInFile(constructor-Operation). The information extracted from output file, "
        "contains too much DataElements.");
    Util::reportLine("  The max possible amount of Elements is : (int)", mostBytes);
    Util::reportLine("  The dataLength is changed from: (int)", fileSize(), " to: (int)",
                     mostBytes);
}

Buffer::MemoryBuffer RawBinaryInFile::getMemory(std::uint64_t start, std::uint64_t length) const {
    if (length == 0) return {start, 0};
    Buffer::MemoryBuffer image = newImage(start, length);
    const std::uint64_t end = std::min(start + image.getDataLength(), dataLength);
    if (start < end)
        image.overlayRead(start, end - start,
                          [&](std::span<std::uint8_t> out) { return read(start, out); });
    return image;
}

void RawBinaryInFile::fillMemoryBuffer(Buffer::MemoryBuffer& buffer) const {
    const std::uint64_t start = buffer.getStartAddress();
    const std::uint64_t length = buffer.getDataLength();
    if (start + length > dataLength) {
        reportRange(readerName, "fillMemoryBuffer", {start, length}, "Nothing was filled",
                    minAddress, dataLength, getInformation());
        return;
    }
    buffer.fillFrom(getMemory(start, length).viewElements(), start);
}

std::string RawBinaryInFile::getInformation() const {
    return informationAbout(readerName, dataLength, minAddress, minAddress + dataLength);
}

}  // namespace Io::Import
