#include "parser/text/ReplacementFormat.hpp"

#include <algorithm>
#include <stdexcept>

#include "parser/text/Characters.hpp"

namespace Parser {

namespace {

/// Takes the number of a group, of one digit or two, off the front of `format`.
std::size_t takeGroup(std::string_view& format) {
    std::size_t number = 0;
    for (int digits = 0; digits < 2 && !format.empty() && isDigit(format.front()); ++digits) {
        number = number * 10 + static_cast<std::size_t>(format.front() - '0');
        format.remove_prefix(1);
    }
    return number;
}

/// Takes what follows a dollar sign off the front of `format`, if it has a meaning there.
std::string_view takeReferred(std::string_view& format, const MatchTexts& texts) {
    constexpr std::string_view dollar = "$";
    if (format.empty()) return dollar;
    if (isDigit(format.front())) {
        const std::size_t number = takeGroup(format);
        return number == 0 ? texts.match : texts.group(number);
    }
    const char sign = format.front();
    if (std::string_view("$&`'").find(sign) == std::string_view::npos) return dollar;
    format.remove_prefix(1);
    if (sign == '&') return texts.match;
    if (sign == '`') return texts.before;
    return sign == '\'' ? texts.after : dollar;
}

}  // namespace

void appendFormatted(std::string& text, std::string_view format, const MatchTexts& texts,
                     std::size_t longest) {
    while (!format.empty()) {
        const std::size_t length = std::min(format.find('$'), format.size());
        appendBounded(text, format.substr(0, length), longest);
        format.remove_prefix(length);
        if (format.empty()) return;
        format.remove_prefix(1);
        appendBounded(text, takeReferred(format, texts), longest);
    }
}

void appendBounded(std::string& text, std::string_view part, std::size_t longest) {
    if (part.size() > longest - text.size()) throw std::length_error("expanded script");
    text += part;
}

}  // namespace Parser
