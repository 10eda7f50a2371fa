#pragma once

#include <map>
#include <span>
#include <string>

namespace App {

/// What the arguments of a run ask for.
struct CommandLine {
    std::map<std::string, std::string> initialVariables;
    std::string scriptPath;  ///< the last argument that is not a variable; may stay empty
    bool asksForUsage = false;
};

/// Reads the arguments that follow the program's own name. `name=value` sets a variable, and the
/// first setting of a name counts; an argument that ends in "?", "help" or "-h" asks for the usage
/// text and ends the scan; every other one is the script. Nothing is refused.
CommandLine scanArguments(std::span<const char* const> arguments);

}  // namespace App
