#include "strict/script/PathArgument.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace Strict {

namespace {

/// What the preparation of a script acts on: the end of `text` if that is the beginning of one.
struct Mark {
    std::string_view before;
    char after;
};

constexpr std::array marks{
    Mark{"/", '/'},           // a comment
    Mark{"SUBSTITUTE", ' '},  // a variable
    Mark{"\r", '\n'},         // the end of a line, of which one character is kept
};

std::string obstacleTo(std::string_view path) {
    constexpr std::string_view space = " \t\n\v\f\r";
    constexpr char endOfText = 0x1A;
    if (path.find_first_of("{}\"'") != std::string_view::npos)
        return "a statement drops braces and quotes from a path";
    if (path.find(endOfText) != std::string_view::npos) return "a script ends at the byte 0x1A";
    if (path.empty() || space.find(path.front()) != std::string_view::npos ||
        space.find(path.back()) != std::string_view::npos)
        return "a statement drops white space at the ends of a path";
    return {};
}

}  // namespace

/// A statement drops quotes from a path, so one keeps the characters of a mark apart. Only between
/// braces a quote does not end the text.
PathArgument argumentOf(const std::string& path) {
    std::string text;
    for (const char c : path) {
        const bool isMark = std::ranges::any_of(marks, [&](const Mark& mark) {
            return c == mark.after && text.ends_with(mark.before);
        });
        if (isMark) text += '"';
        text += c;
    }
    const bool isPlain = text.size() == path.size();
    return {isPlain ? '"' + text + '"' : '{' + text + '}', obstacleTo(path)};
}

}  // namespace Strict
