#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <system_error>

/// The standard streams of the process.
namespace Platform {

/// Prepares the process for faults of its standard streams and files, and its console for texts in
/// UTF-8. Created once, before anything is opened; its destructor sets the console back.
///
/// A closed standard stream is replaced by a descriptor that refuses reads and writes: otherwise
/// the next file opened would get its number, and messages would go into that file. A write to a
/// pipe that nobody reads any more, or beyond the limit for the size of a file, becomes an error of
/// that write instead of a signal that ends the program. Programs started by `runProgram` get the
/// signals as this one got them.
class StreamGuard {
public:
    StreamGuard();
    // NOLINTNEXTLINE(performance-trivially-destructible): only Linux has nothing to set back.
    ~StreamGuard();
    StreamGuard(const StreamGuard&) = delete;
    StreamGuard& operator=(const StreamGuard&) = delete;
};

enum class StandardStream : unsigned char { Output, Error };

/// The stream is a terminal that shows colors, and the user has not asked for none (NO_COLOR).
bool showsColor(StandardStream stream = StandardStream::Error);

/// Columns of the terminal that standard output is, or 0 if it is none.
std::size_t terminalWidth();

/// Texts on standard output are shown as UTF-8: by the locale of the user's environment or, on
/// Windows, by the console or the code page of the machine.
bool showsUnicode();

/// Reads bytes of standard input that have arrived, and waits while there are none. On Windows
/// standard input and output are streams of bytes from then on.
///
/// @return how many there are; 0 at the end of the input, or if it cannot be read
std::size_t readInput(std::span<char> bytes);

/// Makes a folder the one that relative paths begin in.
std::error_code changeFolder(const std::string& path);

}  // namespace Platform
