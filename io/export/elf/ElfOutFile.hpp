#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "io/OutFile.hpp"
#include "io/export/ImageView.hpp"
#include "io/export/OutputStyles.hpp"
#include "io/export/TessaronExportApi.hpp"

namespace Io::Export {

/// Writes a copy of an ELF file, its template, in which the bytes that the file's segments load are
/// those of the images. An image gives the bytes of its addresses, which are the physical ones of
/// the segments (Io::Import::ElfFile::segments). Nothing else of the file changes.
///
/// Each written byte of an image needs a segment that has it in the file, and each byte of a
/// segment an image that has its address: the filler counts where nothing wrote. An image that
/// skips unwritten addresses leaves the template's bytes there, and what no image has keeps its
/// bytes then. Of images that overlap, the later one counts.
///
/// The template may be the file that is written: it has been read when the output begins.
class ElfOutFile final : public BinaryOutFile, public TessaronExportApi {
public:
    ElfOutFile(std::string path, ElfOutputStyle style)
        : BinaryOutFile(std::move(path)), style_(std::move(style)) {}

    void insert(const ImageView& image) override {
        if (!image.elements.empty()) images_.push_back(image);
    }

    /// @throws GivenUp  after a report, if the template cannot be read or does not fit the images
    void saveToFile() override;
    void setExecutionAddress(std::uint64_t /*address*/) override {}

private:
    ElfOutputStyle style_;
    std::vector<ImageView> images_;
};

}  // namespace Io::Export
