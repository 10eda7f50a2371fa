#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "io/OutFile.hpp"
#include "io/export/AlignedImages.hpp"
#include "io/export/OutputStyles.hpp"
#include "io/export/TessaronExportApi.hpp"

namespace Io::Export {

/// Writes a memory file for $readmemh of Verilog (IEEE Std 1364-2005, section 17.2.9): "@" and the
/// address in words, then words in hexadecimal digits, 16 bytes a line.
///
/// A word begins at a multiple of its size; what no image has in it is 0. Its most significant byte
/// is the one of the lowest address, or of the highest one in little-endian order. Addresses above
/// 0xFFFFFFFF cancel the file.
class VmemOutFile final : public TextOutFile, public TessaronExportApi {
public:
    VmemOutFile(std::string path, WordStyle style);

    void insert(const ImageView& image) override { images_.insert(image); }
    void saveToFile() override;
    void setExecutionAddress(std::uint64_t /*address*/) override {}

private:
    void writeLine(PieceWriter& out, std::span<const std::uint8_t> bytes) const;

    WordStyle style_;
    AlignedImages images_;
};

}  // namespace Io::Export
