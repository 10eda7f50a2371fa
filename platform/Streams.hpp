#pragma once

#include <cstddef>
#include <string>
#include <system_error>

/// The standard streams of the process.
namespace Platform {

/// Prepares the process for faults of its standard streams and files; called once, before anything
/// is opened.
///
/// A closed standard stream is replaced by a descriptor that refuses reads and writes: otherwise
/// the next file opened would get its number, and messages would go into that file. A write to a
/// pipe that nobody reads any more, or beyond the limit for the size of a file, becomes an error of
/// that write instead of a signal that ends the program. Programs started by `runProgram` get the
/// signals as this one got them.
void guardStreams();

enum class StandardStream : unsigned char { Output, Error };

/// The stream is a terminal that shows colors, and the user has not asked for none (NO_COLOR).
bool showsColor(StandardStream stream = StandardStream::Error);

/// Columns of the terminal that standard output is, or 0 if it is none.
std::size_t terminalWidth();

/// The locale of the user's environment encodes texts in UTF-8.
bool showsUnicode();

/// Makes a folder the one that relative paths begin in.
std::error_code changeFolder(const std::string& path);

}  // namespace Platform
