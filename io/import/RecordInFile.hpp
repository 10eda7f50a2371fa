#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "io/InFile.hpp"
#include "io/TextLines.hpp"
#include "io/import/OverlapSearch.hpp"
#include "io/import/RecordParser.hpp"
#include "io/import/TessaronImportApi.hpp"

namespace Io::Import {

/// What the readers of the two text formats have in common: the report on what the parse of the
/// file has left, and the answers to all questions about its data.
class RecordInFile : public TextInFile, public TessaronImportApi {
public:
    Facts::InputFormat getFormat() const override { return parsedData_.format(); }
    std::uint64_t getMinAddress() const override { return parsedData_.minAddress(); }
    std::uint64_t getDataLength() const override { return parsedData_.dataLength(); }
    Buffer::MemoryBuffer getMemory() const override {
        return getMemory(getMinAddress(), getDataLength());
    }
    Buffer::MemoryBuffer takeMemory() override { return parsedData_.takeMemory(); }
    Buffer::MemoryBuffer getMemory(std::uint64_t start, std::uint64_t length) const override {
        return parsedData_.getMemory(start, length);
    }
    bool hasStartAddress() const override { return startAddress_.has_value(); }
    std::uint64_t getStartAddress() const override { return startAddress_.value_or(0); }
    Buffer::AreaList getDataAreas() const override { return parsedData_.getDataAreas(); }
    void fillMemoryBuffer(Buffer::MemoryBuffer& buffer) const override {
        parsedData_.fillMemoryBuffer(buffer);
    }
    std::optional<Buffer::Overlap> findOverlap(bool isDifferent) const override {
        return Import::findOverlap(parsedData_, isDifferent);
    }
    void preferFirst() override { parsedData_.preferFirst(); }
    std::string getInformation() const { return parsedData_.getInformation(); }

protected:
    /// @param lines   of the file `path`, all of them taken by the parser
    /// @param parsed  what the parser made of them
    /// @param mostBytes  addresses that the span of the data may have; what lies beyond them is
    ///                   cut off, with a report
    /// @throws std::bad_alloc  if the parser ran out of memory
    /// @throws Io::bad_open  if the file has changed since it was opened
    RecordInFile(const std::string& path, TextLines& lines, ParsedFile parsed,
                 std::uint64_t mostBytes);

private:
    void limitSpan(std::uint64_t mostBytes);
    void reportFault(TextLines& lines, const ParsedFile& parsed) const;

    ParsedData parsedData_;
    std::optional<std::uint64_t> startAddress_;
};

}  // namespace Io::Import
