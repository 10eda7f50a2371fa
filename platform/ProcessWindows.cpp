#include "platform/Process.hpp"

#include <cstdlib>

#include "platform/WideText.hpp"

namespace Platform {

int runProgram(const std::string& location, const std::string& arguments) {
    // The interpreter takes the first and the last quote off a line that begins with one ("cmd",
    // Microsoft Learn), so a quoted path needs a second pair around the whole line.
    const std::string quote = location.find(' ') == std::string::npos ? "" : "\"";
    std::string line = quote;
    line += quote;
    line += location;
    line += quote;
    line += ' ';
    line += arguments;
    line += quote;
    return ::_wsystem(wideText(line).c_str());
}

}  // namespace Platform
