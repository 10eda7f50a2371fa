#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "strict/script/SourceFile.hpp"

/// Scripts in an editor: what an editor shows and changes, as values, without the protocol that
/// brings them to it.
namespace Editor {

using Strict::TextSpan;

/// The units in which an editor counts the columns of a line.
enum class Encoding : unsigned char { Utf8, Utf16 };

/// A place in a text: line and column, both counted from 0.
struct Position {
    std::size_t line = 0;
    std::size_t column = 0;
    auto operator<=>(const Position&) const = default;
};

/// A replacement of a part of a text.
struct Edit {
    TextSpan where;
    std::string text;
};

/// The text of a script as an editor or a file has it, and as the program reads it: without a byte
/// order mark and without the carriage returns of line ends, up to a byte 0x1A.
class Text {
public:
    explicit Text(std::string raw);

    const std::string& raw() const { return raw_; }
    std::string_view read() const { return dropped_.empty() ? std::string_view(raw_) : read_; }

    /// The place of a byte of the raw text, or of its end.
    Position positionOf(std::size_t offset, Encoding encoding) const;

    /// The byte of the raw text at a place. One beyond the end of its line is that end, a line
    /// beyond the last one is the end of the text.
    std::size_t offsetOf(Position position, Encoding encoding) const;

    /// Where a byte of the text as it is read, or its end, is in the raw text.
    std::size_t rawOf(std::size_t offset) const;

    /// The way back. A byte that is dropped has the place of the next one.
    std::size_t readOf(std::size_t offset) const;

    /// The part of the raw text that is `part` of the text as it is read.
    TextSpan rawOf(TextSpan part) const;

    /// How many lines end in the raw text.
    std::size_t lineEnds() const { return lines_.size() - 1; }

    /// The edit of the raw text that makes an edit of the text as it is read. New lines end as the
    /// first one does.
    Edit rawOf(const Edit& edit) const;

private:
    /// A character in a long line whose column is known.
    struct Milestone {
        std::size_t at;
        std::size_t column;  ///< in units of UTF-16
        std::size_t columnIn(Encoding encoding, std::size_t line) const {
            return encoding == Encoding::Utf8 ? at - line : column;
        }
    };

    void findLines();
    void addMilestones(std::size_t begin, std::size_t end);

    /// The one before `next` if it is in the line that begins at `line`; else the line's first
    /// character.
    Milestone milestoneBefore(std::vector<Milestone>::const_iterator next, std::size_t line) const;

    std::string raw_;
    std::string read_;                   ///< unless it is `raw_`
    std::vector<std::size_t> dropped_;   ///< bytes of `raw_` that are not read, ascending
    std::vector<std::size_t> lines_;     ///< where the lines of `raw_` begin
    std::vector<Milestone> milestones_;  ///< ascending
    bool endsWithPairs_ = false;         ///< the first line ends with CR LF
};

/// The text after edits, which do not overlap and are in the order of the text.
std::string edited(std::string_view text, const std::vector<Edit>& edits);

/// The last byte at or before `offset` with which a character of UTF-8 begins.
std::size_t characterStart(std::string_view text, std::size_t offset);

}  // namespace Editor
