#include "io/export/RawBinaryOutFile.hpp"

namespace Io::Export {

void RawBinaryOutFile::insertMemoryBuffer(const Buffer::MemoryBuffer& buffer) {
    outputBytes_.append(buffer);
}

void RawBinaryOutFile::saveToFile() {
    PieceWriter out = startOutput();
    outputBytes_.forBytes([&out](std::span<const std::uint8_t> bytes) { out.append(bytes); });
    out.finish();
}

}  // namespace Io::Export
