#include "platform/Process.hpp"

#include <cstdlib>

namespace Platform {

void runProgram(const std::string& location, const std::string& arguments) {
    // Within single quotes every character but the single quote is literal.
    std::string command = "'";
    for (const char character : location) {
        if (character == '\'')
            command += "'\\''";
        else
            command += character;
    }
    command += "' ";
    command += arguments;
    static_cast<void>(std::system(command.c_str()));
}

}  // namespace Platform
