#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

/// What the operating system has to give. Everything else in the tree is portable; a port to
/// another system is one more source file beside PlatformLinux.cpp.
namespace Platform {

/// Separator between the folders of a path.
extern const char pathSeparator;

/// What the version block of a program file says.
struct VersionInfo {
    std::string fileName;
    std::uint16_t major = 0;
    std::uint16_t minor = 0;
    std::string copyright;
    std::string buildDate;  ///< day of compilation, as in "Aug 18 2021"
};

/// The version data of the running program, or nothing when it has none.
///
/// @param programPath  the path by which the program was started
std::optional<VersionInfo> versionInfo(const char* programPath);

/// Anonymous memory that reads as zero and is not touched before its first use.
class PageBlock {
public:
    PageBlock() = default;

    /// Reserves `size` bytes.
    ///
    /// @throws std::bad_alloc when the system refuses, or when the machine (or the control group
    ///         of this process) has less memory left than that: the pages are handed out one by
    ///         one later, when nothing could be refused any more.
    explicit PageBlock(std::size_t size);
    ~PageBlock();
    PageBlock(PageBlock&& other) noexcept;
    PageBlock& operator=(PageBlock&& other) noexcept;
    PageBlock(const PageBlock&) = delete;
    PageBlock& operator=(const PageBlock&) = delete;

    std::byte* data() const { return data_; }
    std::size_t size() const { return size_; }

private:
    std::byte* data_ = nullptr;
    std::size_t size_ = 0;
};

/// Prepares the process for what may be wrong with its standard streams and its files; called once,
/// before anything is opened.
///
/// A standard stream that is closed is filled in by a descriptor that refuses reads and writes: its
/// number would go to the next file that is opened, and messages into that file. And a write to a
/// pipe that nobody reads any more, or beyond the limit for the size of a file, becomes an error of
/// that write instead of a signal that ends the program. Programs of `runProgram` get the signals
/// as this one got them.
void guardStreams();

/// How well the bytes that were read stand for a file.
enum class Reading {
    Complete,
    Failed,  ///< a read failed, and what the file has from there on is missing
    Changed  ///< the file was written to, or cut, since it was opened
};

/// A regular file opened for reading. Closed by its destructor.
class InputFile {
public:
    /// Nothing when the file cannot be opened or is no regular file: a directory or a pipe must
    /// neither count as an empty file nor stop the run.
    static std::optional<InputFile> open(const std::string& path);
    ~InputFile();
    InputFile(InputFile&& other) noexcept;
    InputFile& operator=(InputFile&& other) = delete;
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    /// Bytes of the file at the time when it was opened.
    std::uint64_t size() const { return size_; }

    /// Reads from byte `offset` of the file on, to `out`, and returns the number of bytes read:
    /// fewer than asked for only at the end of the file or where it cannot be read.
    std::size_t readAt(std::uint64_t offset, std::span<char> out) const;

    /// What has become of all reads so far.
    Reading reading() const;

private:
    explicit InputFile(int descriptor) : descriptor_(descriptor) {}

    int descriptor_;
    std::uint64_t size_ = 0;
    std::chrono::nanoseconds changeTime_{};  ///< of its contents, when it was opened
    mutable bool hasFailed_ = false;         ///< noted by each read, whoever asks for it
};

/// The bytes of a file; the block may be larger than `size`.
struct FileContents {
    PageBlock block;
    std::size_t size = 0;
    Reading reading = Reading::Complete;

    std::string_view text() const;
};

/// Reads the whole of a regular file, nothing translated.
///
/// Nothing is returned when the file cannot be opened or is no regular file. A read that fails
/// midway leaves what was read.
std::optional<FileContents> readFile(const std::string& path);

/// Makes text mode of what was read as bytes: drops one carriage return in front of each line feed
/// and ends the text at a byte 0x1A.
void translateText(FileContents& contents);

enum class FileMode { Text, Binary };

/// A file opened for writing; an existing one is cut to length zero. Closed by its destructor.
class OutputFile {
public:
    /// Nothing when the file cannot be opened; it is untouched then.
    static std::optional<OutputFile> create(const std::string& path, FileMode mode);
    ~OutputFile();
    OutputFile(OutputFile&& other) noexcept;
    OutputFile& operator=(OutputFile&& other) = delete;
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Writes all bytes, or as many as the device takes; false when it did not take all of them.
    bool write(std::string_view bytes) const;

    /// Closes the file; false when not all that was written has arrived. Some file systems, those
    /// of a network above all, tell only now that there was no room.
    bool close();

private:
    explicit OutputFile(int descriptor) : descriptor_(descriptor) {}
    int descriptor_;
};

/// Runs the program at `location` through the command interpreter, with `arguments` as its argument
/// string, and waits for its end. Its outcome is not reported.
///
/// The location is quoted, so that every character of it is its own; the arguments are not.
void runProgram(const std::string& location, const std::string& arguments);

/// Bytes of stack that a deep recursion may use up, counted from the frame of `main`.
std::size_t usableStackBytes();

/// Steps of a few nanoseconds, such as a copy or a comparison, that a search without a foreseeable
/// end may take before it counts as hung.
std::uint64_t usableSteps();

}  // namespace Platform
