#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <vector>

#include "io/OutFile.hpp"
#include "io/SRecord.hpp"
#include "io/export/ImageView.hpp"
#include "io/export/OutputStyles.hpp"
#include "io/export/TessaronExportApi.hpp"

namespace Io::Export {

/// One record before it becomes text.
struct SRecord {
    SRecordType recordType = SRecordType::Unknown;
    std::vector<std::uint8_t> address;  ///< most significant byte first
    std::vector<std::uint8_t> data;
};

enum class SRecordKind { Data, Terminator };

/// Writes S-records: a header, the data with one address width for the whole file, a count record
/// after every 65535 data records, and a terminator with the execution address.
class MotorolaS_OutFile final : public TextOutFile, public TessaronExportApi {
public:
    /// A `maximumRecordSize` outside 21 to 32 is reported and corrected. The module name is padded
    /// on the left to ten characters, the description on the right to eighteen, unless a text
    /// takes the place of both.
    MotorolaS_OutFile(std::string path, const MotorolaSOutputStyle& style);

    /// An image that reaches beyond 0xFFFFFFFF is reported and left out.
    void insert(const ImageView& image) override;
    void saveToFile() override;
    void setExecutionAddress(std::uint64_t address) override { executionAddress_ = address; }

    /// Sets address and type of `record` for `value`, in the width of the file or the one that the
    /// value needs.
    void makeRecord(SRecordKind kind, std::uint64_t value, SRecord& record) const;

    /// The record as text, with its line feed; no text for an unknown type.
    static std::string getStringRepresentation(const SRecord& record);

private:
    SRecord header() const;
    /// The records that are made over and over while a file is written.
    struct Progress {
        SRecord data;
        SRecord count{SRecordType::S5, {}, {}};
        std::uint32_t uncounted = 0;  ///< data records since the last count record
    };

    static void writeRecord(PieceWriter& out, const SRecord& record);
    /// A record of type and address of `head`, with `data` in place of its own.
    static void writeRecord(PieceWriter& out, const SRecord& head,
                            std::span<const std::uint8_t> data);
    void writeImage(PieceWriter& out, const ImageView& image, Progress& progress) const;
    void writeCount(PieceWriter& out, Progress& progress) const;
    void setAddress(std::uint64_t value, SRecord& record) const;

    std::size_t addressBytes_ = 2;
    std::uint64_t executionAddress_ = 0;
    MotorolaSOutputStyle outputStyle_;
    std::deque<ImageView> memoryBuffers_;
};

}  // namespace Io::Export
