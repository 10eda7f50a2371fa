#pragma once

#include <string>

/// Other programs.
namespace Platform {

/// Runs the program at `location` through the command interpreter, with `arguments` as its argument
/// string, and waits for its end. Its outcome is ignored.
///
/// The location is quoted, so every character of it is literal; the arguments are not.
void runProgram(const std::string& location, const std::string& arguments);

}  // namespace Platform
