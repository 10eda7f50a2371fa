#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "facts/FieldFacts.hpp"
#include "io/InFile.hpp"
#include "io/field/FieldParser.hpp"
#include "io/import/OverlapSearch.hpp"
#include "io/import/ReadOptions.hpp"
#include "io/import/TessaronImportApi.hpp"

namespace Io::Field {

/// A text file as it is in the field. The constructor reports what is wrong and odd, and which
/// addresses the file gives more than once; the last byte counts.
class FieldInFile final : public TextInFile, public Import::TessaronImportApi {
public:
    /// @param file  the open file `path`
    /// @param format   Intel HEX or S-records
    /// @param options  overlaps are reported unless they have a rule
    /// @param visitor  learns which sound records the file has; null for nobody
    /// @throws Io::bad_open  if the file has changed since it was opened
    FieldInFile(const std::string& path, Platform::InputFile file, Facts::InputFormat format,
                const Import::ReadOptions& options, Import::RecordVisitor* visitor = nullptr);

    /// A line is damaged, so that the file has no data.
    bool isDamaged() const { return parser_->isDamaged(); }

    Facts::InputFormat getFormat() const override { return bytes().format(); }
    std::uint64_t getMinAddress() const override { return bytes().minAddress(); }
    std::uint64_t getDataLength() const override { return bytes().dataLength(); }
    Buffer::MemoryBuffer getMemory() const override {
        return getMemory(getMinAddress(), getDataLength());
    }
    Buffer::MemoryBuffer takeMemory() override { return parser_->data().bytes().takeMemory(); }

    /// A range that begins below the data is not refused: it has no values there.
    Buffer::MemoryBuffer getMemory(std::uint64_t start, std::uint64_t length) const override;
    bool hasStartAddress() const override { return parser_->startAddress().has_value(); }
    std::uint64_t getStartAddress() const override { return parser_->startAddress().value_or(0); }
    Buffer::AreaList getDataAreas() const override { return bytes().getDataAreas(); }
    void fillMemoryBuffer(Buffer::MemoryBuffer& buffer) const override {
        bytes().fillMemoryBuffer(buffer);
    }

    std::optional<Buffer::Overlap> findOverlap(bool isDifferent) const override {
        return Import::findOverlap(bytes(), isDifferent);
    }
    void preferFirst() override { parser_->data().bytes().preferFirst(); }

    std::string getHeader() const override { return parser_->header(); }

    /// They stay when the image is taken.
    std::span<const Import::SourceRun> getSourceRuns() const override {
        return parser_->data().sources();
    }

private:
    const Import::ParsedData& bytes() const { return std::as_const(*parser_).data().bytes(); }
    void reportOverlaps(Platform::InputFile file) const;
    std::vector<std::uint64_t> linesOf(const std::vector<std::size_t>& offsets,
                                       Platform::InputFile file) const;

    std::unique_ptr<FieldParser> parser_;
};

/// Visits the records of a file that has been read before, without a report.
///
/// @param addressUnit  the addresses of the file count words of that many bytes
void walkRecords(const std::string& path, Platform::InputFile file, Facts::InputFormat format,
                 std::uint32_t addressUnit, Import::RecordVisitor& visitor);

}  // namespace Io::Field
