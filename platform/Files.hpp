#pragma once

#include <chrono>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>

#include "platform/Memory.hpp"

/// Files of the operating system.
namespace Platform {

/// What distinguishes a file from all others, whatever its path.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t number = 0;
    auto operator<=>(const FileIdentity&) const = default;
};

/// What distinguishes one state of a regular file from another, as far as the system shows changes.
struct FileState {
    FileIdentity identity;
    std::uint64_t size = 0;
    std::chrono::nanoseconds changeTime{};  ///< of its contents
    bool operator==(const FileState&) const = default;
};

/// How completely the bytes that were read represent a file.
enum class Reading {
    Complete,
    Failed,  ///< a read failed, and what follows in the file is missing
    Changed  ///< the file was written to, or cut, since it was opened
};

/// A file opened for reading. Closed by its destructor.
///
/// A file that is not regular (a pipe, a device) has no size and no positions, so it is read into
/// memory as a whole when it is opened.
class InputFile {
public:
    /// Nothing if the file cannot be opened or no end of it can be expected: a directory, a
    /// terminal, a named pipe without a writer, a device that makes its reader wait, or more than a
    /// gibibyte (64 MiB from a character device) of anything but a regular file.
    ///
    /// @throws std::bad_alloc  if the machine cannot hold a file that is not regular
    static std::optional<InputFile> open(const std::string& path);

    /// The same for standard input.
    static std::optional<InputFile> openStandardInput();
    ~InputFile();
    InputFile(InputFile&& other) noexcept;
    InputFile& operator=(InputFile&& other) = delete;
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    /// A file that is only in memory: the first `size` bytes of `contents`.
    static InputFile ofMemory(PageBlock contents, std::size_t size);

    /// The same open file once more: nothing if the process may have no further descriptor, or if
    /// it is not a regular file.
    std::optional<InputFile> again() const;

    /// Bytes of the file when it was opened.
    std::uint64_t size() const { return state_.size; }

    /// The regular file when it was opened; nothing for a file of another kind.
    std::optional<FileState> state() const;

    /// Reads from byte `offset` of the file on, to `out`, and returns the number of bytes read:
    /// fewer than asked for only at the end of the file or where it cannot be read.
    std::size_t readAt(std::uint64_t offset, std::span<char> out) const;

    /// Lets a file that ends before its size, as those of some virtual file systems do, count as
    /// one that could not be read.
    void refuseEarlyEnd() { refusesEarlyEnd_ = true; }

    /// The outcome of all reads so far.
    Reading reading() const;

    /// Overwrites what was read into memory when a file that is not regular was opened, which must
    /// not be read again.
    void wipe();

    /// Whether users other than its owner may read this regular file. False where the system has no
    /// such bits.
    bool isReadableByOthers() const;

private:
    explicit InputFile(int descriptor) : descriptor_(descriptor) {}

    /// The file of an open descriptor, which it closes.
    static std::optional<InputFile> ofDescriptor(int descriptor);

    /// `readAt` of what has been read to memory.
    std::size_t copyOfStream(std::uint64_t offset, std::span<char> out) const;

    /// Makes room in memory for at least `size` bytes more.
    void makeRoom(std::size_t size);

    /// Reads at most `most` bytes to memory, up to the end of the file. False if there are more, or
    /// none from a named pipe. Waits for the writer of a pipe and for nothing else.
    bool readStream(std::size_t most, bool isPipe, bool isNamed);

    /// Notes that there is no byte at `offset`, without an error.
    void noteEnd(std::uint64_t offset) const {
        hasFailed_ = hasFailed_ || (refusesEarlyEnd_ && offset < state_.size);
    }

    int descriptor_;
    FileState state_;   ///< when it was opened; of other files than regular ones only the size
    PageBlock stream_;  ///< the contents of a file that is not regular
    bool isStream_ = false;
    bool refusesEarlyEnd_ = false;
    mutable bool hasFailed_ = false;  ///< set by the first read that fails
};

/// The bytes of a file; the block may be larger than `size`.
struct FileContents {
    PageBlock block;
    std::size_t size = 0;
    Reading reading = Reading::Complete;

    std::string_view text() const;
};

/// Reads a whole file, nothing translated.
///
/// Nothing if the file cannot be opened (InputFile::open). A read that fails midway leaves what was
/// read.
std::optional<FileContents> readFile(const std::string& path);

/// The same for standard input.
std::optional<FileContents> readStandardInput();

/// Translates what was read as bytes as text mode does: drops one carriage return before each line
/// feed and ends the text at a byte 0x1A.
void translateText(FileContents& contents);

/// In text mode the file gets the line ends of the platform for line feeds: CR LF on Windows.
enum class FileMode { Text, Binary };

/// A file opened for writing; an existing one is cut to length zero. Closed by its destructor.
class OutputFile {
public:
    /// Nothing if the file cannot be opened; it is untouched then.
    static std::optional<OutputFile> create(const std::string& path, FileMode mode);

    /// The same for a file that is not there yet: nothing if it is.
    ///
    /// @param isPrivate  whether only its owner may read it
    static std::optional<OutputFile> createNew(const std::string& path, bool isPrivate);
    ~OutputFile();
    OutputFile(OutputFile&& other) noexcept;
    OutputFile& operator=(OutputFile&& other) = delete;
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Writes on where an open descriptor of this process is, which stays open.
    static std::optional<OutputFile> ofStream(int descriptor);

    /// Gives the empty file the owner, the group and the mode of the file at `path`, as far as that
    /// is permitted. Nobody gains rights by that: without the owner and the group, the group and
    /// all others get what both had; set-user-ID, set-group-ID and the sticky bit are dropped. On
    /// Windows it is the file that is replaced that hands them on.
    std::error_code takeAttributesOf(const std::string& path) const;

    FileIdentity identity() const;

    /// Writes all bytes, or as many as the device takes; false if it did not take all of them.
    bool write(std::string_view bytes) const;

    /// Closes the file; false if not all that was written has arrived. Some file systems, above all
    /// those of a network, report only now that there was no room.
    bool close();

private:
    OutputFile(int descriptor, FileMode mode) : descriptor_(descriptor), mode_(mode) {}
    int descriptor_;
    FileMode mode_;
};

}  // namespace Platform
