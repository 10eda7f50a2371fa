#include "io/export/PieceWriter.hpp"

#include <algorithm>

namespace Io::Export {

char* PieceWriter::reserve(std::size_t size) {
    if (piece_.size() < size) piece_.resize(size);
    if (piece_.size() - used_ < size) flush();
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
