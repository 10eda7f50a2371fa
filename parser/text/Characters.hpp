#pragma once

namespace Parser {

/// Whether `c` is one of the digits 0 to 9, whatever the locale.
constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Whether `c` is a letter of ASCII, a digit or an underscore: what \w of a pattern matches.
constexpr bool isWordCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || isDigit(c) || c == '_';
}

}  // namespace Parser
