#include "util/Printable.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "util/Hex.hpp"

namespace Util {

namespace {

/// A character, or a byte that is not UTF-8, and how many bytes it takes.
struct Character {
    char32_t code;
    std::size_t size;
    bool isValid;
};

struct Range {
    char32_t first;
    char32_t last;
};

/// The characters of the categories Cc, Cf, Zl and Zp of Unicode 15.0, and those that XML 1.0 does
/// not have.
constexpr std::array notPrintable{
    Range{0x0000, 0x001F},   Range{0x007F, 0x009F},   Range{0x00AD, 0x00AD},
    Range{0x0600, 0x0605},   Range{0x061C, 0x061C},   Range{0x06DD, 0x06DD},
    Range{0x070F, 0x070F},   Range{0x0890, 0x0891},   Range{0x08E2, 0x08E2},
    Range{0x180E, 0x180E},   Range{0x200B, 0x200F},   Range{0x2028, 0x202E},
    Range{0x2060, 0x206F},   Range{0xFEFF, 0xFEFF},   Range{0xFFF9, 0xFFFB},
    Range{0xFFFE, 0xFFFF},   Range{0x110BD, 0x110BD}, Range{0x110CD, 0x110CD},
    Range{0x13430, 0x1343F}, Range{0x1BCA0, 0x1BCA3}, Range{0x1D173, 0x1D17A},
    Range{0xE0001, 0xE007F},
};

bool isContinuation(char c) {
    constexpr unsigned mask = 0xC0;
    constexpr unsigned continuation = 0x80;
    return (static_cast<unsigned char>(c) & mask) == continuation;
}

bool isPrintable(const Character& character) {
    if (!character.isValid) return false;
    const auto* const range =
        std::ranges::lower_bound(notPrintable, character.code, {}, &Range::last);
    return range == notPrintable.end() || character.code < range->first;
}

/// The first character of a text that is not empty, RFC 3629.
Character firstOf(std::string_view text) {
    constexpr std::array<char32_t, 5> smallest{0, 0, 0x80, 0x800, 0x10000};
    constexpr unsigned bits = 6;
    const auto lead = static_cast<unsigned char>(text.front());
    const Character none{lead, 1, false};
    if (lead < 0x80) return {lead, 1, true};
    const std::size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC0 || lead > 0xF7 || text.size() < size) return none;
    char32_t code = lead & (0x7FU >> size);
    for (const char c : text.substr(1, size - 1)) {
        if (!isContinuation(c)) return none;
        code = code << bits | (static_cast<unsigned char>(c) & 0x3FU);
    }
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    const bool isGood = code >= smallest[size] && code <= 0x10FFFF && !isSurrogate;
    return isGood ? Character{code, size, true} : none;
}

/// Whether a byte is a printable character of ASCII, of which nearly all texts consist.
bool isPlain(char c) {
    return c >= ' ' && c <= '~';
}

/// Appends the text, and what `replace` makes of each character that is not printable.
template <class Replace>
std::string replaced(std::string_view text, Replace replace) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const auto plain =
            static_cast<std::size_t>(std::ranges::find_if_not(text, &isPlain) - text.begin());
        result += text.substr(0, plain);
        text.remove_prefix(plain);
        if (text.empty()) break;
        const Character character = firstOf(text);
        if (isPrintable(character))
            result += text.substr(0, character.size);
        else
            replace(result, character);
        text.remove_prefix(character.size);
    }
    return result;
}

void appendCode(std::string& text, char32_t code, std::size_t fewestDigits) {
    text += "\\u";
    text += hexNumber(code, fewestDigits);
}

void appendEscape(std::string& text, const Character& character) {
    constexpr char32_t firstWide = 0x80;
    if (character.code == '\n')
        text += "\\n";
    else if (character.code == '\t')
        text += "\\t";
    else if (!character.isValid || character.code < firstWide)
        text += "\\x" + hexByte(static_cast<std::uint8_t>(character.code));
    else
        appendCode(text, character.code, 4);
}

/// RFC 8259, section 7: a character beyond U+FFFF takes two escapes.
void appendJsonEscape(std::string& text, char32_t code) {
    constexpr char32_t firstPair = 0x10000;
    constexpr unsigned bits = 10;
    if (code >= firstPair) {
        appendCode(text, 0xD800 + ((code - firstPair) >> bits), 4);
        code = 0xDC00 + ((code - firstPair) & 0x3FFU);
    }
    appendCode(text, code, 4);
}

}  // namespace

std::string printable(std::string_view text) {
    return replaced(text, &appendEscape);
}

std::string printableColumns(std::string_view text) {
    return replaced(text, [](std::string& result, const Character& character) {
        constexpr char32_t firstWide = 0x80;
        // What `characters` does not count takes no column.
        const bool isCounted = character.isValid || character.code >= 0xC0;
        if (isCounted) result += character.code < firstWide ? " " : "\xEF\xBF\xBD";
    });
}

std::string printableJson(std::string_view json) {
    // The line feeds of an indented text are outside its strings, where JSON has them as escapes.
    return replaced(json, [](std::string& result, const Character& character) {
        if (!character.isValid)
            result += "\xEF\xBF\xBD";
        else if (character.code == '\n')
            result += '\n';
        else
            appendJsonEscape(result, character.code);
    });
}

std::string printableMarkup(std::string_view text) {
    const std::string safe = replaced(text, [](std::string& result, const Character& character) {
        if (character.code == '\t')
            result += '\t';
        else
            appendEscape(result, character);
    });
    std::string markup;
    markup.reserve(safe.size());
    for (const char c : safe) {
        if (c == '&')
            markup += "&amp;";
        else if (c == '<')
            markup += "&lt;";
        else if (c == '>')
            markup += "&gt;";
        else if (c == '"')
            markup += "&quot;";
        else
            markup += c;
    }
    return markup;
}

std::size_t characters(std::string_view text) {
    return text.size() - static_cast<std::size_t>(std::ranges::count_if(text, &isContinuation));
}

std::string_view firstCharacters(std::string_view text, std::size_t most) {
    std::size_t size = 0;
    for (; size < text.size(); ++size)
        if (!isContinuation(text[size]) && most-- == 0) break;
    return text.substr(0, size);
}

std::string_view lastCharacters(std::string_view text, std::size_t most) {
    std::size_t from = text.size();
    for (std::size_t at = text.size(); at != 0 && most != 0; --at) {
        if (isContinuation(text[at - 1])) continue;
        from = at - 1;
        --most;
    }
    return text.substr(from);
}

}  // namespace Util
