#pragma once

#include <cstdint>
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
/// the fillers of the image, and with 0 outside of images. Addresses above 0xFFFFFFFF cancel the
/// file.
class Uf2OutFile final : public BinaryOutFile, public TessaronExportApi {
public:
    Uf2OutFile(std::string path, Uf2OutputStyle style)
        : BinaryOutFile(std::move(path)), style_(style) {}

    void insert(const ImageView& image) override { images_.insert(image); }
    void saveToFile() override;
    void setExecutionAddress(std::uint64_t /*address*/) override {}

private:
    Uf2OutputStyle style_;
    AlignedImages images_{Uf2::payloadSize};
};

}  // namespace Io::Export
