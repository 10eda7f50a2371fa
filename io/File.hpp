#pragma once

#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "platform/Platform.hpp"

/// Whole files, moved between disk and memory in one step. Nothing here knows a file format.
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

/// The lines of a text, as views into it: what stands between line feeds, without a last line of
/// no characters.
class TextLines {
public:
    TextLines() = default;
    explicit TextLines(std::string_view text) : rest_(text) {}

    bool empty() const { return rest_.empty(); }

    /// The last line; the text must not be empty.
    std::string_view back() const;

    /// Takes the first line off. It is the last one if `empty` holds afterwards.
    std::string_view takeFirst();

private:
    std::string_view rest_;
};

/// A text file, whole, as text mode gives it: no carriage return in front of a line feed, nothing
/// from a byte 0x1A on.
class TextInFile : public File {
public:
    /// @throws bad_open
    explicit TextInFile(const std::string& path);

    /// The file `path` has been read already, with `contents` as they stand on the disk.
    TextInFile(const std::string& path, Platform::FileContents contents);

protected:
    TextLines lines() const { return TextLines(contents_.text()); }
    std::size_t textSize() const { return contents_.size; }

    /// Gives the memory of the text back, once it has been parsed.
    void releaseText() { contents_ = {}; }

private:
    Platform::FileContents contents_;
};

/// Any file, whole, byte for byte.
class BinaryInFile : public File {
public:
    /// @throws bad_open
    explicit BinaryInFile(const std::string& path);

    /// The file `path` has been read already.
    BinaryInFile(const std::string& path, Platform::FileContents contents);

protected:
    std::span<const std::uint8_t> data() const { return contents_.bytes(); }

private:
    Platform::FileContents contents_;
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
    /// A write that fails leaves a shorter file and one line on standard error.
    ///
    /// @throws bad_open  before anything is changed
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

/// The file's bytes as they stand on the disk.
///
/// @throws bad_open
Platform::FileContents readWhole(const std::string& path);

}  // namespace Io
