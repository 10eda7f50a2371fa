#include "fuzz/ScriptInput.hpp"

#include <string_view>
#include <vector>

#include "app/CommandLine.hpp"

namespace Fuzz {

namespace {

constexpr std::string_view fileMark = "\n=== ";

/// Cuts off and returns the text before `end` and drops `end` itself. Without an `end` that is the
/// whole text.
std::string_view takeUpTo(std::string_view& text, std::string_view end) {
    const std::size_t length = text.find(end);
    const std::string_view taken = text.substr(0, length);
    text.remove_prefix(length == std::string_view::npos ? text.size() : length + end.size());
    return taken;
}

std::map<std::string, std::string> variablesOf(std::string_view argumentLines) {
    std::vector<std::string> arguments;
    while (!argumentLines.empty()) {
        // An argument ends at a zero byte, as on every operating system.
        const std::string_view line = takeUpTo(argumentLines, "\n");
        arguments.emplace_back(line.substr(0, line.find('\0')));
    }
    std::vector<const char*> pointers;
    pointers.reserve(arguments.size());
    for (const std::string& argument : arguments) pointers.push_back(argument.c_str());
    return App::scanArguments(pointers).initialVariables;
}

}  // namespace

ScriptInput::ScriptInput(const std::uint8_t* data, std::size_t size, Machine& machine) {
    std::string text = "\n";
    text.append(data, data + size);
    machine.addFile(scriptPath, std::string_view(text).substr(1));
    if (text.find(fileMark) == std::string::npos) return;
    std::string_view rest = text;
    const std::string_view arguments = takeUpTo(rest, fileMark);
    if (!arguments.empty()) variables = variablesOf(arguments.substr(1));
    while (!rest.empty()) {
        std::string_view file = takeUpTo(rest, fileMark);
        const std::string path(takeUpTo(file, "\n"));
        machine.addFile(path, file);
    }
}

}  // namespace Fuzz
