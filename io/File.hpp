#pragma once

#include <algorithm>
#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Files.hpp"
#include "platform/Memory.hpp"

/// Files on their way between disk and memory. Nothing here knows a file format.
namespace Io {

/// Root of the exceptions of this namespace; never thrown by itself.
struct exception : std::exception {};

/// A file could not be opened.
struct bad_open : exception {
    const char* what() const noexcept override { return "Could not open file"; }
};

/// A path, kept as it was given. Touches no file.
class File {
public:
    explicit File(std::string path) : fileName(std::move(path)) {}
    virtual ~File() = default;
    File(const File&) = delete;
    File& operator=(const File&) = delete;

protected:
    std::string fileName;
};

/// The lines of a text file, one after the other, as text mode gives them: no carriage return in
/// front of a line feed, nothing from a byte 0x1A on, no last line of no characters.
///
/// Memory holds no more of the file than a piece of it or its longest line.
class TextLines {
public:
    /// @throws bad_open
    explicit TextLines(const std::string& path);

    /// Bytes that the file had when it was opened; no text is longer.
    std::uint64_t fileSize() const { return file_.size(); }

    /// Moves on to the next line, the first one at first; false when there is none.
    bool next();

    /// The line at hand, without its end, until `next` or `restart`.
    std::string_view line() const { return line_; }

    /// The line at hand is the last one.
    bool isLast() const { return isTextRead_ && next_ == end_; }

    /// Goes back in front of the first line.
    void restart();

    /// How well the lines stand for the file.
    Platform::Reading reading() const { return file_.reading(); }

    /// The file itself, for who wants it as it is.
    Platform::InputFile takeFile() { return std::move(file_); }

    /// The first characters of the last line, at most `headLength` of them, or nothing when there
    /// is no line. Known for free once the last line has been at hand.
    const std::optional<std::string>& lastHead();

    static constexpr std::size_t headLength = 16;

private:
    bool findLineEnd();
    void readOn();

    Platform::InputFile file_;
    Platform::PageBlock piece_;
    std::uint64_t pieceStart_ = 0;  ///< place of the piece in the file
    std::size_t lineBegin_ = 0;     ///< of the line at hand, in the piece
    std::size_t next_ = 0;          ///< behind the line at hand and its end
    std::size_t end_ = 0;           ///< behind what has been read
    bool isTextRead_ = false;       ///< nothing of the text is left in the file
    std::string_view line_;
    bool isLastHeadKnown_ = false;
    std::optional<std::string> lastHead_;
};

/// A text file that is read line by line.
class TextInFile : public File {
public:
    /// @throws bad_open
    explicit TextInFile(const std::string& path);

    /// The file `path` has been opened already.
    TextInFile(const std::string& path, TextLines lines);

protected:
    /// Shows `look` every line in order and hands every line but the last one to `take`, until one
    /// of them returns false; false if one did.
    template <class Look, class Take>
    bool forLines(Look look, Take take) {
        lines_->restart();
        while (lines_->next()) {
            if (!look(lines_->line())) return false;
            if (!lines_->isLast() && !take(lines_->line())) return false;
        }
        return true;
    }

    /// The first characters of the last line, or nothing when there is no line.
    const std::optional<std::string>& lastHead() { return lines_->lastHead(); }
    std::uint64_t fileSize() const { return lines_->fileSize(); }

    /// Closes the file, once it has been parsed. Says on standard error that it could not be read
    /// to its end.
    ///
    /// @throws bad_open  if it has changed since it was opened
    void close();

    /// The lines go to another reader.
    TextLines releaseLines() { return std::move(*lines_); }

private:
    std::optional<TextLines> lines_;
};

/// Any file, byte for byte.
class BinaryInFile : public File {
public:
    /// @throws bad_open
    explicit BinaryInFile(const std::string& path);

    /// The file `path` has been opened already.
    BinaryInFile(const std::string& path, Platform::InputFile file);

protected:
    std::uint64_t fileSize() const { return file_.size(); }

    /// Reads from byte `start` of the file on, to `out`, and returns the number of bytes read:
    /// fewer than asked for only at the end of the file, or where it cannot be read, which is said
    /// on standard error.
    ///
    /// @throws bad_open  if the file has changed since it was opened
    std::size_t read(std::uint64_t start, std::span<std::uint8_t> out) const;

private:
    Platform::InputFile file_;
};

/// Where a writer puts its output, piece by piece.
using Sink = std::function<void(std::string_view piece)>;

/// What produces the output of a writer, in order, by handing pieces to the sink.
using Source = std::function<void(const Sink& sink)>;

/// The output side: creates the file and fills it in one call, at the end of a writer's work, so
/// that a writer which gives up before leaves no trace.
class OutFile : public File {
protected:
    OutFile(std::string path, Platform::FileMode mode) : File(std::move(path)), mode_(mode) {}

    /// Creates the file, or cuts an existing one to length zero, and writes what `source` produces.
    /// A write that fails, up to the last one when the file is closed, leaves a shorter file and
    /// one line on standard error. The file is not touched before there is a first piece, so that a
    /// source which fails at once, for want of memory, leaves an existing file as it is.
    ///
    /// @throws bad_open  before anything is changed; what `source` throws leaves as well
    void write(const Source& source) const;

private:
    Platform::FileMode mode_;
};

/// A file of text: its line feeds become what the platform has for them.
class TextOutFile : public OutFile {
public:
    explicit TextOutFile(std::string path) : OutFile(std::move(path), Platform::FileMode::Text) {}
};

/// A file of bytes.
class BinaryOutFile : public OutFile {
public:
    explicit BinaryOutFile(std::string path)
        : OutFile(std::move(path), Platform::FileMode::Binary) {}
};

}  // namespace Io
