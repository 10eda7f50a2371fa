#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <utility>

#include "io/OutFile.hpp"
#include "io/Uf2.hpp"
#include "io/export/AlignedImages.hpp"
#include "io/export/OutputStyles.hpp"
#include "io/export/TessaronExportApi.hpp"

namespace Io::Export {

/// Writes UF2 (io/Uf2.hpp) for the main flash of one family of devices: blocks of 256 bytes at
/// multiples of 256, ascending and numbered. A block that an image has in part is filled up with
/// the fillers of the image, of which the first and the last one go on outside of it. Addresses
/// above 0xFFFFFFFF cancel the file.
///
/// The blocks for several families follow each other, those of each numbered for themselves, as the
/// format has it: a boot loader ignores all blocks of another family.
class Uf2OutFile final : public BinaryOutFile, public TessaronExportApi {
public:
    Uf2OutFile(std::string path, Uf2OutputStyle style)
        : BinaryOutFile(std::move(path)), style_(std::move(style)) {}

    void insert(const ImageView& image) override;
    void saveToFile() override;
    void setExecutionAddress(std::uint64_t /*address*/) override {}

private:
    /// The blocks for one family.
    struct Part {
        std::uint32_t family;
        AlignedImages images{Uf2::payloadSize, AlignedImages::Padding::Fillers};
    };

    static void writePart(PieceWriter& out, const Part& part);

    Uf2OutputStyle style_;
    std::deque<Part> parts_;
};

}  // namespace Io::Export
