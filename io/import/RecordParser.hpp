#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "facts/Facts.hpp"
#include "io/Backoff.hpp"
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

/// A line of a file, without its text, which may be as long as the file.
struct LinePosition {
    std::uint64_t position = 0;  ///< see TextLines::position
    std::uint64_t number = 0;    ///< counted from 1
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
    LinePosition faultLine;  ///< the line with the fault
};

/// Takes the lines of a text file one by one and reports nothing.
///
/// While the format of a file is uncertain its lines go to the parsers of all formats. So a parser
/// notes its first fault, or that it ran out of memory, and ignores the lines after it.
class RecordParser {
public:
    /// Lets the addresses of the file count words of `bytes` bytes. Called before the first line.
    void setAddressUnit(std::uint32_t bytes) { parsed_.data.setAddressUnit(bytes); }

    /// Hands the result over, once all lines are taken.
    ParsedFile takeResult() { return std::move(parsed_); }

    /// A fault has ended the parse.
    bool isOver() const { return parsed_.fault != LineFault::None || parsed_.isExhausted; }

protected:
    RecordParser(Facts::InputFormat format, std::uint64_t fileSize)
        // Two digits make a byte, so there are no more bytes than half the characters.
        : parsed_(ParsedData(format, static_cast<std::size_t>(fileSize / 2))) {}

    /// Takes the current line by `parse`, which returns its fault.
    template <class Parse>
    void takeLine(const TextLines& lines, Parse parse) {
        try {
            parsed_.fault = parse(lines.line());
        } catch (const std::bad_alloc&) {
            exhaust();
        }
        if (parsed_.fault == LineFault::None) return;
        parsed_.faultLine = {lines.position(), lines.number()};
        if (parsed_.fault == LineFault::Contradictory) parsed_.data.clear();
    }

    /// Takes the perfect data records at the front of the text ahead, which need no grammar, and
    /// returns their number. Their addresses are relative to `base`.
    ///
    /// @param decode  of Util::Records, for digits of any case
    template <class Decode>
    std::uint64_t takeDataAhead(TextLines& lines, Decode decode, std::uint64_t base) {
        // The first data record reserves the memory.
        if (isOver() || parsed_.data.empty() || !ahead_.isDue()) return 0;
        // What follows a record counts bytes.
        if (parsed_.data.addressUnit() != 1) return 0;
        const std::string_view all = lines.textAhead();
        std::string_view text = all;
        std::uint64_t count = 0;
        try {
            for (auto run = decode(text, parsed_.data.room()); run.count != 0;
                 run = decode(text, parsed_.data.room())) {
                parsed_.data.appendInPlace(base + run.address, run.dataSize);
                text.remove_prefix(run.textSize);
                count += run.count;
            }
        } catch (const std::bad_alloc&) {
            exhaust();
        }
        lines.skip(all.size() - text.size(), count);
        ahead_.note(count != 0);
        return count;
    }

    /// Data of `size` bytes is a whole number of the words that addresses count.
    bool isOfWords(std::size_t size) const { return size % parsed_.data.addressUnit() == 0; }

    ParsedFile parsed_;

private:
    void exhaust() {
        parsed_.data.clear();
        parsed_.isExhausted = true;
    }

    Backoff ahead_;  ///< for files whose records are not perfect
};

/// Parses the lines that are left.
template <class Parser>
Parser parseLines(TextLines& lines) {
    Parser parser(lines.fileSize());
    while (lines.next()) {
        parser.take(lines);
        parser.takeAhead(lines);
    }
    return parser;
}

}  // namespace Io::Import
