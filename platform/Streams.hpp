#pragma once

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

/// Standard error is a terminal that shows colors, and the user has not asked for none (NO_COLOR).
bool showsColor();

/// Makes a folder the one that relative paths begin in.
std::error_code changeFolder(const std::string& path);

}  // namespace Platform
