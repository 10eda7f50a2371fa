#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Files.hpp"

namespace Strict {

/// How a file compares with what is made for it.
enum class FileMatch : unsigned char {
    Equal,
    Different,
    Missing  ///< or not to be opened
};

/// Compares what is made for a file with what is there, piece by piece, so that neither is in
/// memory as a whole.
class FileComparison {
public:
    explicit FileComparison(const std::string& path) : file_(Platform::InputFile::open(path)) {}

    /// Compares the bytes that follow those before. False from the first piece on that differs.
    bool take(std::string_view bytes);

    /// The outcome if no more bytes follow.
    FileMatch match() const {
        if (!file_) return FileMatch::Missing;
        return isSame_ && at_ == file_->size() ? FileMatch::Equal : FileMatch::Different;
    }

    /// The bytes of the file before the first piece that differs, with room for all that it has.
    std::string equalBytes() const;

private:
    std::optional<Platform::InputFile> file_;
    std::uint64_t at_ = 0;  ///< bytes that are equal
    bool isSame_ = true;
    std::vector<char> found_;  ///< the last piece of the file
};

}  // namespace Strict
