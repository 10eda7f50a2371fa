#include "io/import/RawBinaryInFile.hpp"

#include <algorithm>
#include <utility>

#include "facts/Listener.hpp"
#include "io/import/ReaderReports.hpp"

namespace Io::Import {

namespace {

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
    dataLength_ = std::min(fileSize(), mostBytes);
    if (fileSize() <= mostBytes) return;
    Facts::report(Facts::RawFileTooLong{mostBytes, fileSize()});
}

Buffer::MemoryBuffer RawBinaryInFile::getMemory(std::uint64_t start, std::uint64_t length) const {
    if (length == 0) return {start, 0};
    Buffer::MemoryBuffer image = newImage(start, length);
    const std::uint64_t end = std::min(start + image.getDataLength(), dataLength_);
    if (start < end)
        image.overlayRead(start, end - start,
                          [&](std::span<std::uint8_t> out) { return read(start, out); });
    return image;
}

void RawBinaryInFile::fillMemoryBuffer(Buffer::MemoryBuffer& buffer) const {
    const Buffer::Area range = buffer.getArea();
    const Buffer::Area data{minAddress, dataLength_};
    if (!data.contains(range)) {
        reportRange(Facts::InputFormat::RawBinary, Facts::ReadOperation::FillMemoryBuffer, range,
                    data, getInformation());
        return;
    }
    buffer.fillFrom(getMemory(range.start, range.length).viewElements(), range.start);
}

std::string RawBinaryInFile::getInformation() const {
    return informationAbout(Facts::InputFormat::RawBinary, dataLength_, minAddress,
                            minAddress + dataLength_);
}

}  // namespace Io::Import
