#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <utility>

#include "io/OutFile.hpp"
#include "io/export/OutputStyles.hpp"
#include "io/export/TessaronExportApi.hpp"

namespace Io::Export {

/// Writes a header of C, an array of constant bytes or of wider elements for each image (ISO/IEC
/// 9899:1999, with <stdint.h>), its length in bytes and its address. An incomplete last element is
/// filled up with bytes of 0. The arrays after the first one have the name and a number from 2 on.
/// An image without bytes has no array, since C has none of length 0.
class CArrayOutFile final : public TextOutFile, public TessaronExportApi {
public:
    CArrayOutFile(std::string path, CArrayOutputStyle style)
        : TextOutFile(std::move(path)), style_(std::move(style)) {}

    void insert(const ImageView& image) override { images_.push_back(image); }
    void saveToFile() override;
    void setExecutionAddress(std::uint64_t /*address*/) override {}

private:
    std::string headOf(std::size_t number, const ImageView& image) const;
    void writeElements(PieceWriter& out, const ImageView& image) const;

    CArrayOutputStyle style_;
    std::deque<ImageView> images_;
};

}  // namespace Io::Export
