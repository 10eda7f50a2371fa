#pragma once

#include <string>

/// Other programs.
namespace Platform {

/// Runs the program at `location` through the command interpreter, with `arguments` as its argument
/// string, and waits for its end.
///
/// The location is quoted, so every character of it is literal; the arguments are not. On Windows
/// a location is quoted only if it has a blank, and % is not literal.
///
/// @return the exit code as a shell reports it: 127 if there is no such program, 126 if it cannot
///         be run, 128 and the number of the signal that ended it; -1 without a shell. On Windows
///         it is 1 if there is no such program
int runProgram(const std::string& location, const std::string& arguments);

}  // namespace Platform
