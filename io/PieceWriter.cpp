#include "io/PieceWriter.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

#include "facts/Listener.hpp"
#include "io/File.hpp"

namespace Io {

namespace {

constexpr std::size_t pieceSize = std::size_t{1} << 18U;
/// A write that ends within a page of the file makes the kernel handle this page twice.
constexpr std::size_t pageSize = 4096;
/// What is at least as long is written from where it is: to copy it would cost more than a write.
constexpr std::size_t longText = pieceSize / 2;

}  // namespace

PieceWriter::PieceWriter(const std::string& path, Platform::FileMode mode,
                         std::size_t longestReserve)
    : path_(path), mode_(mode), piece_(std::max(pieceSize, longestReserve + pageSize)) {}

void PieceWriter::makeRoom(std::size_t size) {
    if (piece_.size() < size + pageSize) {
        Platform::PageBlock larger(std::max(size, used_) + pageSize);
        std::memcpy(larger.data(), piece_.data(), used_);
        piece_ = std::move(larger);
    }
    if (piece_.size() - used_ < size) flush(used_ - used_ % pageSize);
}

void PieceWriter::append(std::string_view text) {
    if (text.size() < longText) {
        commit(std::ranges::copy(text, reserve(text.size())).out);
        return;
    }
    if (used_ != 0) flush(used_);
    write(text);
}

/// Writes the first `size` characters of the piece.
void PieceWriter::flush(std::size_t size) {
    write({begin(), size});
    used_ -= size;
    std::memmove(begin(), begin() + size, used_);
}

void PieceWriter::write(std::string_view text) {
    if (!file_) {
        file_ = host().createOutput(path_, mode_);
        if (!file_) throw bad_open();
    }
    isComplete_ = isComplete_ && file_->write(text);
}

void PieceWriter::finish() {
    flush(used_);
    isComplete_ = file_->close() && isComplete_;
    if (!isComplete_) Facts::report(Facts::FileWriteIncomplete{path_});
}

}  // namespace Io
