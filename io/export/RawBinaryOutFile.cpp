#include "io/export/RawBinaryOutFile.hpp"

namespace Io::Export {

void RawBinaryOutFile::insert(const ImageView& image) {
    outputBytes_.append(image);
}

void RawBinaryOutFile::saveToFile() {
    PieceWriter out = startOutput();
    outputBytes_.forBytes([&out](std::span<const std::uint8_t> bytes) { out.append(bytes); });
    out.finish();
}

}  // namespace Io::Export
