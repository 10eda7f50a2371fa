#pragma once

#include <map>
#include <span>
#include <string>

namespace App {

/// What the arguments of a run ask for.
struct CommandLine {
    std::map<std::string, std::string> initialVariables;
    std::string scriptPath;  ///< the last argument that is no variable; may stay empty
};

/// Reads the arguments behind the program's own name. `name=value` sets a variable, the first
/// setting of a name counts; an argument that ends in "?", "help" or "-h" prints the usage text and
/// ends the scan; every other one is the script. Nothing is refused.
CommandLine scanArguments(std::span<const char* const> arguments);

/// Prints the three lines of the usage text.
void printUsage();

}  // namespace App
