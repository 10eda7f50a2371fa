#pragma once

#include <cstdint>
#include <deque>
#include <span>
#include <string>

#include "io/IntelHexRecord.hpp"
#include "io/OutFile.hpp"
#include "io/export/ImageView.hpp"
#include "io/export/OutputStyles.hpp"
#include "io/export/TessaronExportApi.hpp"

namespace Io::Export {

/// Where an address lies for an extended address record.
struct OffsetInformation {
    std::uint64_t startAddress;  ///< the address asked about
    std::uint64_t base;          ///< the 16-bit value of the extended address record
    std::uint64_t offset;        ///< the address within the block
    IntelRecordType recordType;  ///< the kind of that record
    bool isValid;                ///< the address can be reached
};

/// Writes Intel HEX with extended linear or extended segment addresses.
///
/// An image is cut into blocks that one extended address record reaches, and every block opens with
/// its own, the first one too. One block out of reach cancels the whole file.
class IntelHexOutFile final : public TextOutFile, public TessaronExportApi {
public:
    /// A `dataRecordLength` outside 1 to 255 is reported and corrected.
    IntelHexOutFile(std::string path, IntelHexOutputStyle style);

    void insert(const ImageView& image) override;
    void saveToFile() override;
    void setExecutionAddress(std::uint64_t address) override;

    /// Base and offset of the block that `startAddress` opens; an address beyond the reach of the
    /// addressing mode (0xFFFFFFFF linear, 0xFFFFF segment) is reported.
    OffsetInformation setOffsetInformation(std::uint64_t startAddress) const;

    /// One record as text, with its line feed.
    ///
    /// @param address   the low 16 bits count
    /// @param elements  at most 255, the reach of the count field
    /// @throws std::exception  for a kind of record that the format does not have, after a report
    static std::string getStringRepresentationFor(std::uint64_t address, IntelRecordType recordType,
                                                  std::span<const Buffer::MemoryElement> elements);

private:
    void writeBlock(PieceWriter& out, const ImageView& block) const;
    void writeStartRecord(PieceWriter& out) const;

    bool hasExecutionAddress_ = false;
    std::uint64_t executionAddress_ = 0;
    IntelHexOutputStyle outputStyle_;
    /// The images, cut into pieces that one extended address record reaches.
    std::deque<ImageView> memoryBuffers_;
};

}  // namespace Io::Export
