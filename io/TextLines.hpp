#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "platform/Files.hpp"

namespace Io {

/// The byte order mark of UTF-8, which editors put at the beginning of a file.
inline constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";

/// Where the text of a file ends.
enum class TextEnd : std::uint8_t {
    Mark,  ///< at a byte 0x1A, as in text mode, or with the file
    File
};

/// The lines of a text file, one after the other, as text mode gives them: no carriage return in
/// front of a line feed, nothing from a byte 0x1A on, no last line of no characters.
///
/// Memory holds no more of the file than a piece of it or its longest line.
class TextLines {
public:
    /// @throws bad_open
    explicit TextLines(const std::string& path);

    /// The file has been opened already.
    explicit TextLines(Platform::InputFile file, TextEnd end = TextEnd::Mark)
        : file_(std::move(file)), endsAtMark_(end == TextEnd::Mark) {}

    /// Bytes that the file had when it was opened; no text is longer.
    std::uint64_t fileSize() const { return file_.size(); }

    /// Moves on to the next line, the first one at first; false when there is none.
    bool next();

    /// The current line, without its end, until `next` or `moveTo`.
    std::string_view line() const { return line_; }

    /// The number of the current line, counted from 1.
    std::uint64_t number() const { return number_; }

    /// Byte of the file at which the current line begins.
    std::uint64_t position() const { return pieceStart_ + lineBegin_; }

    /// The current line is the last one.
    bool isLast() const { return isTextRead_ && next_ == end_; }

    /// There may be carriage returns in the current line. Known only if the text ends with the
    /// file.
    bool mayHaveReturns() const { return mayHaveReturns_; }

    /// Makes line `number`, which begins at byte `position` of the file, the next one.
    void moveTo(std::uint64_t position, std::uint64_t number);

    /// The text after the current line, as far as it has been read, until `next` or `moveTo`.
    std::string_view textAhead() const {
        return {reinterpret_cast<const char*>(piece_.data()) + next_, end_ - next_};
    }

    /// Moves on over the first `size` characters of `textAhead`, which are `count` lines. No line
    /// is the current one until `next`.
    void skip(std::size_t size, std::uint64_t count) {
        next_ += size;
        number_ += count;
    }

    /// Whether what was read so far is the file as it was when it was opened.
    Platform::Reading reading() const { return file_.reading(); }

    /// The open file, for a caller that wants its bytes.
    Platform::InputFile takeFile() { return std::move(file_); }

private:
    bool findLineEnd();
    void readOn();

    Platform::InputFile file_;
    bool endsAtMark_;
    bool mayHaveReturns_ = false;  ///< one was in what has been read
    Platform::PageBlock piece_;
    std::uint64_t pieceStart_ = 0;  ///< position of the piece in the file
    std::size_t lineBegin_ = 0;     ///< of the current line, in the piece
    std::size_t next_ = 0;          ///< one past the current line and its end
    std::size_t end_ = 0;           ///< one past what has been read
    bool isTextRead_ = false;       ///< the file has no more text than the piece
    std::string_view line_;
    std::uint64_t number_ = 0;
};

}  // namespace Io
