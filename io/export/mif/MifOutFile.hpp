#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "io/OutFile.hpp"
#include "io/export/AlignedImages.hpp"
#include "io/export/OutputStyles.hpp"
#include "io/export/TessaronExportApi.hpp"

namespace Io::Export {

/// Writes a memory initialization file for FPGAs (Intel, "Quartus Prime Help", "Memory
/// Initialization File (.mif) Definition"): WIDTH in bits, DEPTH in words, then addresses in words
/// and words in hexadecimal digits, 16 bytes a line.
///
/// The memory begins at address 0 and ends with the last word. A word begins at a multiple of its
/// size; what no image has in it is 0. Its most significant byte is the one of the lowest address,
/// or of the highest one in little-endian order. Addresses above 0xFFFFFFFF cancel the file.
class MifOutFile final : public TextOutFile, public TessaronExportApi {
public:
    MifOutFile(std::string path, WordStyle style)
        : TextOutFile(std::move(path)), style_(style), images_(style.wordBytes) {}

    void insert(const ImageView& image) override { images_.insert(image); }
    void saveToFile() override;
    void setExecutionAddress(std::uint64_t /*address*/) override {}

private:
    std::string head() const;

    WordStyle style_;
    AlignedImages images_;
};

}  // namespace Io::Export
