#include "platform/Process.hpp"

#include <sys/wait.h>

#include <cstdlib>

namespace Platform {

int runProgram(const std::string& location, const std::string& arguments) {
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
    const int status = std::system(command.c_str());
    constexpr int signalBase = 128;
    if (status < 0) return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : signalBase + WTERMSIG(status);
}

}  // namespace Platform
