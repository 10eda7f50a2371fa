#pragma once

#include <cstdint>

#include "buffer/MemoryBuffer.hpp"
#include "io/File.hpp"
#include "io/export/ImageView.hpp"

namespace Io::Export {

/// A writer gives its file up, which has been reported, and the statement fails.
struct GivenUp : Io::exception {
    const char* what() const noexcept override { return "Output given up"; }
};

/// A writer of one output format. Called in this order: construction, which reports and corrects
/// settings out of their limits; `insert` for each image; `setExecutionAddress` if
/// there is one; `saveToFile` once. Nothing reaches the disk before that.
///
/// Images are written in the order of their insertion, neither sorted nor merged, every element of
/// them with its effective byte, unless the image asks for gaps.
class TessaronExportApi {
public:
    TessaronExportApi() = default;
    virtual ~TessaronExportApi() = default;
    TessaronExportApi(const TessaronExportApi&) = delete;
    TessaronExportApi& operator=(const TessaronExportApi&) = delete;

    /// Takes the image in without a copy: it stays with its owner, unchanged until `saveToFile` has
    /// returned. A refused image is reported and left out. A format without addresses takes only
    /// images without gaps.
    virtual void insert(const ImageView& image) = 0;

    /// The whole image, without gaps.
    void insertMemoryBuffer(const Buffer::MemoryBuffer& buffer) { insert(ImageView(buffer)); }

    /// Writes the file. A writer that gives up reports why and leaves an existing file as it is.
    ///
    /// @throws Io::bad_open
    /// @throws GivenUp
    virtual void saveToFile() = 0;

    /// Notes the execution start address, for the formats that can carry one.
    virtual void setExecutionAddress(std::uint64_t address) = 0;
};

}  // namespace Io::Export
