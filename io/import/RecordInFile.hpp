#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "io/File.hpp"
#include "io/import/FormatScan.hpp"
#include "io/import/ParsedData.hpp"
#include "io/import/TessaronImportApi.hpp"

namespace Io::Import {

/// What the readers of the two text formats have in common: data that a parse of the lines leaves
/// behind, and the answers to all questions about it.
class RecordInFile : public TextInFile, public TessaronImportApi {
public:
    /// All of the file has been read. If not, the reader answers no question.
    bool isFinished() const { return isComplete; }

    /// The lines of a file that was left unfinished.
    TextLines takeLines() { return releaseLines(); }

    std::uint64_t getMinAddress() const override { return parsedData.minAddress(); }
    std::uint64_t getDataLength() const override { return parsedData.dataLength(); }
    Buffer::MemoryBuffer getMemory() const override {
        return getMemory(getMinAddress(), getDataLength());
    }
    Buffer::MemoryBuffer takeMemory() override { return parsedData.takeMemory(); }
    Buffer::MemoryBuffer getMemory(std::uint64_t start, std::uint64_t length) const override {
        return parsedData.getMemory(start, length);
    }
    bool hasStartAddress() const override { return isStartAddressSet; }
    std::uint64_t getStartAddress() const override { return startAddress; }
    Buffer::AreaList getDataAreas() const override { return parsedData.getDataAreas(); }
    void fillMemoryBuffer(Buffer::MemoryBuffer& buffer) const override {
        parsedData.fillMemoryBuffer(buffer);
    }
    std::string getInformation() const { return parsedData.getInformation(); }

protected:
    /// @param readerName  for the reports
    RecordInFile(const std::string& path, TextLines lines, std::string_view readerName)
        // Two digits make a byte, so there are no more bytes than half the characters.
        : TextInFile(path, std::move(lines)), parsedData(readerName, fileSize() / 2) {}

    bool isComplete = false;
    bool isStartAddressSet = false;
    std::uint64_t startAddress = 0;
    ParsedData parsedData;
};

}  // namespace Io::Import
