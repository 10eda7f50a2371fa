#include "io/field/FieldFormat.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "io/TextLines.hpp"
#include "io/field/RecordLine.hpp"

namespace Io::Field {

namespace {

using Facts::InputFormat;

/// Bytes that are one character of UTF-8 above U+007F; 0 if `text` does not begin with one.
std::size_t sequenceSize(std::string_view text) {
    const auto first = static_cast<unsigned char>(text.front());
    std::size_t size = 0;
    if (first >= 0xC2 && first < 0xE0) size = 2;
    if (first >= 0xE0 && first < 0xF0) size = 3;
    if (first >= 0xF0 && first < 0xF5) size = 4;
    if (text.size() < size) return 0;
    const auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) >> 6U) == 2; };
    return std::ranges::all_of(text.substr(1, std::max<std::size_t>(size, 1) - 1), isContinuation)
               ? size
               : 0;
}

/// A printable character of ASCII, or a control that texts have.
constexpr bool isAsciiText(char c) {
    return (c >= ' ' && c <= '~') || (c >= '\t' && c <= '\r') || c == '\x1A';
}

/// Counts the bytes of a file by what their lines are, each format for itself.
class LineTally {
public:
    /// Takes the next piece of the file.
    void take(std::string_view piece) {
        while (!piece.empty()) {
            const auto end = static_cast<std::size_t>(
                std::ranges::find_if(piece, [](char c) { return c == '\n' || c == '\r'; }) -
                piece.begin());
            extend(piece.substr(0, end));
            if (end < piece.size()) endLine();
            piece.remove_prefix(std::min(end + 1, piece.size()));
        }
    }

    void endLine() {
        std::string_view line(line_.data(), std::min(length_, line_.size()));
        if (isFirst_ && line.starts_with(utf8Mark)) line.remove_prefix(utf8Mark.size());
        isFirst_ = isFirst_ && length_ == 0;
        count(withoutBlanks(line));
        length_ = 0;
    }

    /// The format of the first line that begins as a record does.
    std::optional<InputFormat> first() const { return first_; }

    /// The format to which most of the bytes so far belong.
    ///
    /// @param isText  then a line with a digit belongs to a format, too
    std::optional<InputFormat> most(bool isText) const {
        for (const InputFormat format : {InputFormat::IntelHex, InputFormat::MotorolaS}) {
            const Count& count = counts_[static_cast<std::size_t>(format)];
            if (2 * (count.records + (isText ? count.beginnings : 0)) > all_) return format;
        }
        return std::nullopt;
    }

private:
    /// Bytes of the lines of one format.
    struct Count {
        std::uint64_t records = 0;
        std::uint64_t beginnings = 0;  ///< of lines that may be damaged records
    };

    void extend(std::string_view text) {
        if (length_ < line_.size())
            std::ranges::copy(text.substr(0, line_.size() - length_),
                              line_.begin() + static_cast<std::ptrdiff_t>(length_));
        length_ += text.size();
    }

    void count(std::string_view line) {
        all_ += length_;
        if (const auto record = recordFormatOf(line)) {
            if (!first_) first_ = record;
            countOf(*record).records += length_;
        } else if (const auto stripped = strippedFormatOf(line)) {
            countOf(*stripped).records += length_;
        } else if (const auto beginning = beginningOf(line)) {
            countOf(*beginning).beginnings += length_;
        }
    }

    Count& countOf(InputFormat format) { return counts_[static_cast<std::size_t>(format)]; }

    std::array<char, longestRecord> line_{};  ///< the beginning of the current one
    std::size_t length_ = 0;                  ///< of the current line
    bool isFirst_ = true;
    std::uint64_t all_ = 0;
    std::array<Count, 2> counts_{};
    std::optional<InputFormat> first_;
};

}  // namespace

bool isText(std::string_view piece) {
    piece = piece.substr(0, piece.find_last_not_of('\0') + 1);
    constexpr std::size_t mostForeign = 64;
    std::size_t foreign = 0;
    for (std::size_t at = 0; at < piece.size();) {
        const std::size_t size = isAsciiText(piece[at]) ? 1 : sequenceSize(piece.substr(at));
        foreign += size == 0 ? 1 : 0;
        at += std::max<std::size_t>(size, 1);
    }
    return !piece.empty() && foreign * mostForeign <= piece.size();
}

std::string_view firstContentOf(std::string_view text) {
    if (text.starts_with(utf8Mark)) text.remove_prefix(utf8Mark.size());
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
        const std::string_view line = withoutBlanks(text.substr(0, end));
        if (!line.empty() && remarkMark(line) == 0) return line;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return {};
}

std::optional<InputFormat> recordFormatIn(const Platform::InputFile& file) {
    constexpr std::size_t pieceSize = std::size_t{1} << 17U;
    std::vector<char> buffer(
        static_cast<std::size_t>(std::min<std::uint64_t>(pieceSize, file.size())));
    LineTally lines;
    for (std::uint64_t start = 0; start < file.size();) {
        const std::string_view piece(buffer.data(), file.readAt(start, buffer));
        if (piece.empty()) break;
        start += piece.size();
        lines.take(piece);
        if (start >= file.size()) lines.endLine();
        const bool isTextPiece = isText(piece);
        if (const auto most = lines.most(isTextPiece)) return most;
        // What follows binary data is not looked at: any bytes may be in it.
        if (!isTextPiece) break;
        if (lines.first()) return lines.first();
    }
    return std::nullopt;
}

}  // namespace Io::Field
