#include "io/PieceWriter.hpp"

#include <algorithm>

#include "facts/Listener.hpp"
#include "io/File.hpp"

namespace Io {

namespace {

constexpr std::size_t pieceSize = std::size_t{1} << 17U;
/// What is at least as long is written from where it is: to copy it would cost more than a write.
constexpr std::size_t longText = pieceSize / 2;

}  // namespace

PieceWriter::PieceWriter(const std::string& path, Platform::FileMode mode,
                         std::size_t longestReserve)
    : path_(path), mode_(mode), piece_(std::max(pieceSize, longestReserve)) {}

void PieceWriter::makeRoom(std::size_t size) {
    if (piece_.size() < size) piece_.resize(size);
    if (piece_.size() - used_ < size) flush();
}

void PieceWriter::append(std::string_view text) {
    if (text.size() < longText) {
        commit(std::ranges::copy(text, reserve(text.size())).out);
        return;
    }
    if (used_ != 0) flush();
    write(text);
}

void PieceWriter::flush() {
    write({piece_.data(), used_});
    used_ = 0;
}

void PieceWriter::write(std::string_view text) {
    if (!file_) {
        file_ = host().createOutput(path_, mode_);
        if (!file_) throw bad_open();
    }
    isComplete_ = isComplete_ && file_->write(text);
}

void PieceWriter::finish() {
    flush();
    isComplete_ = file_->close() && isComplete_;
    if (!isComplete_) Facts::report(Facts::FileWriteIncomplete{path_});
}

}  // namespace Io
