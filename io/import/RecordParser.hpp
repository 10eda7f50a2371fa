#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "facts/Facts.hpp"
#include "io/TextLines.hpp"
#include "io/import/ParsedData.hpp"

namespace Io::Import {

/// What is wrong with a line, and what that means for its file.
enum class LineFault : std::uint8_t {
    None,
    NotARecord,         ///< ends the parse and leaves the data of the lines before
    Contradictory,      ///< ends the parse and discards all data
    LastLineMismatched  ///< nothing of the file counts
};

/// The result of the parse of a text file. Its faults have not been reported.
struct ParsedFile {
    explicit ParsedFile(ParsedData empty) : data(std::move(empty)) {}

    ParsedData data;
    std::optional<std::uint64_t> startAddress;
    bool hasLines = false;
    bool isExhausted = false;  ///< memory ran out
    std::vector<Facts::RecordCountTooLow> lowCounts;
    LineFault fault = LineFault::None;
    std::uint64_t faultPosition = 0;  ///< of the line with the fault, see TextLines::position
};

/// Takes the lines of a text file one by one and reports nothing.
///
/// While the format of a file is uncertain its lines go to the parsers of all formats. So a parser
/// notes its first fault, or that it ran out of memory, and ignores the lines after it.
class RecordParser {
public:
    /// Hands the result over, once all lines are taken.
    ParsedFile takeResult() { return std::move(parsed_); }

protected:
    RecordParser(Facts::InputFormat format, std::uint64_t fileSize)
        // Two digits make a byte, so there are no more bytes than half the characters.
        : parsed_(ParsedData(format, static_cast<std::size_t>(fileSize / 2))) {}

    /// A fault has ended the parse.
    bool isOver() const { return parsed_.fault != LineFault::None || parsed_.isExhausted; }

    /// Takes the current line by `parse`, which returns its fault.
    template <class Parse>
    void takeLine(const TextLines& lines, Parse parse) {
        try {
            parsed_.fault = parse(lines.line());
        } catch (const std::bad_alloc&) {
            parsed_.data.clear();
            parsed_.isExhausted = true;
        }
        if (parsed_.fault == LineFault::None) return;
        parsed_.faultPosition = lines.position();
        if (parsed_.fault == LineFault::Contradictory) parsed_.data.clear();
    }

    ParsedFile parsed_;
};

/// Parses the lines that are left.
template <class Parser>
Parser parseLines(TextLines& lines) {
    Parser parser(lines.fileSize());
    while (lines.next()) parser.take(lines);
    return parser;
}

/// The big-endian number that `bytes` form, modulo 2^64.
template <class Bytes>
std::uint64_t bigEndian(const Bytes& bytes) {
    std::uint64_t number = 0;
    for (const std::uint8_t byte : bytes) number = number << 8U | byte;
    return number;
}

}  // namespace Io::Import
