#include "app/CommandLine.hpp"

#include <algorithm>
#include <array>
#include <string_view>

namespace App {

namespace {

/// What the regular expression ".*(\?|help|-h)", its case ignored, matches as a whole. A dot
/// matches no line end.
bool asksForUsage(std::string_view argument) {
    const auto lower = [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    };
    const auto endsIn = [&](std::string_view ending) {
        if (argument.size() < ending.size()) return false;
        const std::string_view tail = argument.substr(argument.size() - ending.size());
        return std::ranges::equal(tail, ending, {}, lower);
    };
    if (argument.find_first_of("\r\n") != std::string_view::npos) return false;
    constexpr std::array<std::string_view, 3> endings{"?", "help", "-h"};
    return std::ranges::any_of(endings, endsIn);
}

}  // namespace

CommandLine scanArguments(std::span<const char* const> arguments) {
    CommandLine commandLine;
    for (const std::string_view argument : arguments) {
        const std::size_t equals = argument.find('=');
        if (equals != std::string_view::npos) {
            commandLine.initialVariables.try_emplace(std::string(argument.substr(0, equals)),
                                                     argument.substr(equals + 1));
        } else if (asksForUsage(argument)) {
            commandLine.asksForUsage = true;
            break;
        } else {
            commandLine.scriptPath = argument;
        }
    }
    return commandLine;
}

}  // namespace App
