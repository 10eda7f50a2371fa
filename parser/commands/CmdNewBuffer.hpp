#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "buffer/MemoryBuffer.hpp"
#include "buffer/Overlap.hpp"
#include "io/formats/InputFormats.hpp"
#include "io/import/SectionChoice.hpp"
#include "io/import/TessaronImportApi.hpp"
#include "parser/commands/Arrangement.hpp"
#include "parser/commands/CmdApi.hpp"
#include "parser/commands/Layering.hpp"

namespace Parser::WrapperLib {

enum class BufferSourceKind : std::uint32_t {
    SourceEmpty = 0,
    SourceFile = 1,
    SourceValues = 2,
    SourceBuffers = 3
};

/// NEW_BUFFER: makes an image from a file, from values, from other images or from nothing, cut to
/// areas or a range, and keeps it under a name.
class CmdNewBuffer final : public CmdApi {
public:
    void setBufferName(std::string name);

    /// A file of any format, recognised by its contents.
    ///
    /// @param argument  the path as written in the script, delimiters included
    void setFile(std::string argument);

    /// A file of the format `format`, a row of the table, whatever its contents look like.
    void setFileOf(std::string argument, const Io::Formats::InputFormatRow& format);

    /// The file of that path, in which every character counts.
    ///
    /// @param format  a row of the table; null for a format that is recognised by its contents
    void setPath(std::string path, const Io::Formats::InputFormatRow* format);

    /// What was read of that file, as this statement would read it.
    void setReader(std::unique_ptr<Io::Import::TessaronImportApi> reader) {
        reader_ = std::move(reader);
    }

    /// Reads a section of an ELF file, and no others but those that are named as well.
    void useSection(std::string name) { sections_.used.push_back(std::move(name)); }

    /// Leaves out a section of an ELF file.
    void skipSection(std::string name) { sections_.skipped.push_back(std::move(name)); }

    /// Reads what a UF2 file has for a family of devices.
    void setFamily(std::uint32_t family) { family_ = family; }

    void setValues(std::vector<std::uint32_t> list);
    void addSourceBuffer(std::string name);
    void setNewStartAddress(std::uint32_t address);
    void setByteOrder(Buffer::ByteOrder order) { byteOrder_ = order; }

    /// The bytes of each number of FROM_VALUES: 1, 2 or 4.
    void setValueSize(std::uint32_t bytes) { valueSize_ = bytes; }
    void setBufferRange(const Area& range) { bufferRange_ = range; }
    void addArea(const Area& area) { areas_.push_back(area); }
    void setOverlapRule(Buffer::OverlapRule rule) { overlapRule_ = rule; }

    /// One lane of a bus.
    ///
    /// @param numbers  which one, of how many, and the bytes of a lane
    void setLane(std::vector<std::uint32_t> numbers) {
        arrangement_.lane = {numbers.at(0), numbers.at(1), numbers.at(2)};
    }

    /// The sources are the lanes of a bus, each of them `width` bytes wide.
    void setInterleave(std::uint32_t width) { arrangement_.interleave = width; }

    /// Reverses the bytes of each word of 2, 4 or 8 bytes.
    void setSwappedWord(std::uint32_t size) { arrangement_.wordSize = size; }

    /// The addresses of the file count words of that many bytes.
    void setAddressUnit(std::uint32_t bytes) { addressUnit_ = bytes; }

    const std::string& bufferName() const { return bufferName_; }
    BufferSourceKind sourceKind() const { return sourceKind_; }
    const std::string& fileName() const { return fileName_; }
    const AreaList& areas() const { return areas_; }
    std::uint32_t addressUnit() const { return addressUnit_.value_or(1); }
    Buffer::OverlapRule overlapRule() const { return overlapRule_; }

    bool execute(CmdContext& context) override;
    std::uint32_t getCmdType() const override { return number(CmdType::NewBuffer); }

private:
    bool isWhole() const;
    bool mayCountWords(std::string_view format, bool mayCount) const;
    bool hasSections() const;
    std::unique_ptr<Io::Import::TessaronImportApi> openFile(const CmdContext& context);
    /// The image of the statement, not yet moved, or nothing after a report.
    std::optional<Buffer::MemoryBuffer> build(CmdContext& context);
    /// The image of the statement's source, or nothing after a report.
    std::optional<Buffer::MemoryBuffer> gather(CmdContext& context);
    std::optional<Buffer::MemoryBuffer> fromBuffers(CmdContext& context, Area range) const;
    std::optional<Buffer::MemoryBuffer> fromFile(const CmdContext& context, Area range);
    std::optional<Buffer::MemoryBuffer> readFile(const CmdContext& context, Area range);
    Buffer::MemoryBuffer fromValues(const CmdContext& context, Area range) const;

    LayeringTarget target() const { return {Facts::Subject::Buffer, bufferName_}; }

    std::string bufferName_;
    std::uint64_t newStartAddress_ = 0;
    bool hasNewStartAddress_ = false;
    std::string fileName_;
    const Io::Formats::InputFormatRow* format_ = nullptr;  ///< null if the contents decide
    /// Given away when the statement runs; null if the file was not read before.
    std::unique_ptr<Io::Import::TessaronImportApi> reader_;
    Io::Import::SectionChoice sections_;
    std::optional<std::uint32_t> family_;
    BufferSourceKind sourceKind_ = BufferSourceKind::SourceEmpty;
    Buffer::ByteOrder byteOrder_ = Buffer::ByteOrder::NotSet;
    Area bufferRange_;
    AreaList areas_;
    Buffer::OverlapRule overlapRule_ = Buffer::OverlapRule::NotSet;
    std::optional<std::uint32_t> addressUnit_;
    Arrangement arrangement_;
    std::vector<std::uint32_t> values_;
    std::uint32_t valueSize_ = 1;
    std::vector<std::string> sourceBuffers_;
};

}  // namespace Parser::WrapperLib
