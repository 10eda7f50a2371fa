#include "strict/files/FileComparison.hpp"

#include <cstddef>

namespace Strict {

bool FileComparison::take(std::string_view bytes) {
    if (!file_) isSame_ = false;
    // A piece that the cache still holds when it is compared.
    constexpr std::size_t longest = std::size_t{1} << 18U;
    std::uint64_t at = at_;
    while (isSame_ && !bytes.empty()) {
        const std::string_view piece = bytes.substr(0, longest);
        if (found_.size() < piece.size()) found_.resize(piece.size());
        const std::size_t size = file_->readAt(at, {found_.data(), piece.size()});
        isSame_ = piece == std::string_view(found_.data(), size);
        at += size;
        bytes.remove_prefix(piece.size());
    }
    if (isSame_) at_ = at;
    return isSame_;
}

std::string FileComparison::equalBytes() const {
    std::string bytes;
    bytes.reserve(static_cast<std::size_t>(file_->size()));
    bytes.resize(static_cast<std::size_t>(at_));
    bytes.resize(file_->readAt(0, bytes));
    return bytes;
}

}  // namespace Strict
