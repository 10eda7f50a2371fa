#include "io/field/FieldFormat.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "io/import/FormatScan.hpp"

namespace Io::Field {

namespace {

using Facts::InputFormat;

constexpr std::string_view hexDigits = "0123456789ABCDEFabcdef";
/// Digits after the first characters of a record that distinguish it from other text.
constexpr std::size_t recordDigits = 8;
constexpr std::size_t longestStart = 2 + recordDigits;

bool areDigits(std::string_view text, std::size_t count) {
    return text.size() >= count &&
           text.substr(0, count).find_first_not_of(hexDigits) == std::string_view::npos;
}

bool isDecimal(char c) {
    return c >= '0' && c <= '9';
}

/// The place of the first record in a piece of a text that begins with `first`, and at the
/// beginning of a line.
std::size_t findRecord(std::string_view piece, char first, std::size_t most) {
    for (std::size_t at = piece.find(first); at < most; at = piece.find(first, at + 1)) {
        const bool isAtLine = at == 0 || piece[at - 1] == '\n' || piece[at - 1] == '\r';
        if (isAtLine && recordFormatOf(piece.substr(at, longestStart))) return at;
    }
    return most;
}

}  // namespace

std::optional<InputFormat> recordFormatOf(std::string_view line) {
    if (line.starts_with(':') && areDigits(line.substr(1), recordDigits))
        return InputFormat::IntelHex;
    const bool isS = line.size() > 2 && (line[0] == 'S' || line[0] == 's') && isDecimal(line[1]);
    if (isS && areDigits(line.substr(2), recordDigits)) return InputFormat::MotorolaS;
    return std::nullopt;
}

std::optional<InputFormat> firstRecordFormatOf(const Platform::InputFile& file) {
    constexpr std::size_t pieceSize = std::size_t{1} << 17U;
    std::vector<char> buffer(
        static_cast<std::size_t>(std::min<std::uint64_t>(pieceSize, file.size())));
    for (std::uint64_t start = 0; start < file.size();) {
        const std::string_view piece(buffer.data(), file.readAt(start, buffer));
        if (piece.empty()) break;
        // Once more from a line end on, which precedes the first character that is looked at.
        const bool isMarked = start == 0 && piece.starts_with(utf8Mark);
        const std::string_view text = piece.substr(isMarked ? utf8Mark.size() : 0);
        std::size_t first = text.size();
        for (const char c : {':', 'S', 's'}) first = findRecord(text, c, first);
        if (first < text.size()) return recordFormatOf(text.substr(first, longestStart));
        if (start + piece.size() >= file.size()) break;
        start += piece.size() - std::min(piece.size() - 1, longestStart);
    }
    return std::nullopt;
}

bool beginsAsRecords(const Platform::InputFile& file) {
    std::array<char, 4096> head{};
    Import::FormatScan scan;
    std::string_view text(head.data(), file.readAt(0, head));
    while (!text.empty() && !scan.isFinal()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        scan.look(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return scan.type() != Import::InFileType::RawBinary;
}

}  // namespace Io::Field
