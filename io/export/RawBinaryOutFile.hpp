#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "io/OutFile.hpp"
#include "io/export/ConcatenatedImages.hpp"
#include "io/export/TessaronExportApi.hpp"

namespace Io::Export {

/// Writes the images byte for byte, one after the other; their addresses are dropped.
class RawBinaryOutFile final : public BinaryOutFile, public TessaronExportApi {
public:
    explicit RawBinaryOutFile(std::string path) : BinaryOutFile(std::move(path)) {}

    void insert(const ImageView& image) override;
    void saveToFile() override;
    void setExecutionAddress(std::uint64_t /*address*/) override {}

private:
    ConcatenatedImages outputBytes_{Facts::OutputFormat::RawBinary};
};

}  // namespace Io::Export
