#include "io/PieceWriter.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

#include "facts/Listener.hpp"
#include "io/File.hpp"

namespace Io {

namespace {

constexpr std::size_t pieceSize = std::size_t{1} << 18U;
/// A write that ends within a page of the file makes the kernel handle this page twice. Room for
/// one more page lets a record end beyond the piece.
constexpr std::size_t pageSize = 4096;
/// What is at least as long is written from where it is: to copy it would cost more than a write.
constexpr std::size_t longText = pieceSize / 2;

}  // namespace

PieceWriter::PieceWriter(const std::string& path, Platform::FileMode mode,
                         std::size_t longestReserve)
    : path_(path),
      mode_(mode),
      capacity_(std::max(pieceSize, longestReserve) + pageSize),
      piece_(std::make_unique_for_overwrite<char[]>(capacity_)) {}

void PieceWriter::makeRoom(std::size_t size) {
    if (capacity_ < size + pageSize) {
        auto larger = std::make_unique_for_overwrite<char[]>(size + pageSize);
        std::memcpy(larger.get(), piece_.get(), used_);
        piece_ = std::move(larger);
        capacity_ = size + pageSize;
    }
    const std::size_t unit = used_ < pieceSize ? pageSize : pieceSize;
    if (capacity_ - used_ < size) flush(used_ - used_ % unit);
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
    write({piece_.get(), size});
    used_ -= size;
    std::memmove(piece_.get(), piece_.get() + size, used_);
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
