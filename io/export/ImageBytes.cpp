#include "io/export/ImageBytes.hpp"

#include <algorithm>

namespace Io::Export {

ImageBytes imageBytesOf(const Buffer::MemoryBuffer& buffer) {
    ImageBytes image{buffer.getStartAddress(), {}};
    buffer.appendBytes(image.bytes, buffer.getStartAddress(), buffer.getDataLength());
    return image;
}

char* PieceWriter::reserve(std::size_t size) {
    if (piece_.size() - used_ < size) flush();
    if (piece_.size() < size) piece_.resize(size);
    return piece_.data() + used_;
}

void PieceWriter::append(std::string_view text) {
    commit(std::ranges::copy(text, reserve(text.size())).out);
}

void PieceWriter::flush() {
    sink_(std::string_view(piece_.data(), used_));
    used_ = 0;
}

}  // namespace Io::Export
