#include "parser/text/PatternReader.hpp"

#include <algorithm>
#include <array>
#include <climits>
#include <optional>
#include <string>

#include "parser/text/Characters.hpp"

namespace Parser {

namespace {

/// Names of characters in brackets, in the order of their codes, a blank after each; POSIX, XBD,
/// "Portable Character Set".
constexpr std::string_view characterNames =
    "NUL SOH STX ETX EOT ENQ ACK alert backspace tab newline vertical-tab form-feed "
    "carriage-return SO SI DLE DC1 DC2 DC3 DC4 NAK SYN ETB CAN EM SUB ESC IS4 IS3 IS2 IS1 "
    "space exclamation-mark quotation-mark number-sign dollar-sign percent-sign ampersand "
    "apostrophe left-parenthesis right-parenthesis asterisk plus-sign comma hyphen period "
    "slash zero one two three four five six seven eight nine colon semicolon less-than-sign "
    "equals-sign greater-than-sign question-mark commercial-at A B C D E F G H I J K L M N O "
    "P Q R S T U V W X Y Z left-square-bracket backslash right-square-bracket circumflex "
    "underscore grave-accent a b c d e f g h i j k l m n o p q r s t u v w x y z "
    "left-curly-bracket vertical-line right-curly-bracket tilde DEL ";

constexpr char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr bool isLower(char c) {
    return c >= 'a' && c <= 'z';
}
constexpr bool isAlpha(char c) {
    return isLower(lower(c));
}
constexpr bool isAlnum(char c) {
    return isAlpha(c) || isDigit(c);
}
constexpr bool isGraph(char c) {
    return c > ' ' && c < '\x7f';
}
constexpr bool isSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

struct CharacterClass {
    std::string_view name;
    bool (*has)(char);
};

constexpr std::array<CharacterClass, 15> characterClasses{{
    {"d", isDigit},
    {"w", isWordCharacter},
    {"s", isSpace},
    {"alnum", isAlnum},
    {"alpha", isAlpha},
    {"blank", [](char c) { return c == ' ' || c == '\t'; }},
    {"cntrl", [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }},
    {"digit", isDigit},
    {"graph", isGraph},
    {"lower", isLower},
    {"print", [](char c) { return isGraph(c) || c == ' '; }},
    {"punct", [](char c) { return isGraph(c) && !isAlnum(c); }},
    {"space", isSpace},
    {"upper", [](char c) { return isAlpha(c) && !isLower(c); }},
    {"xdigit", [](char c) { return isDigit(c) || (lower(c) >= 'a' && lower(c) <= 'f'); }},
}};

void add(CharacterSet& set, char c) {
    set.set(static_cast<unsigned char>(c));
}

/// @param name  of a class; its case does not matter
CharacterSet classOf(std::string_view name) {
    std::string lowered(name);
    std::ranges::transform(lowered, lowered.begin(), lower);
    const auto* const known = std::ranges::find(characterClasses, lowered, &CharacterClass::name);
    if (known == characterClasses.end()) rejectPattern();
    CharacterSet set;
    for (std::size_t code = 0; code < set.size(); ++code)
        if (known->has(static_cast<char>(code))) set.set(code);
    return set;
}

char characterOf(std::string_view name) {
    std::string_view rest = characterNames;
    for (char code = 0; !rest.empty(); ++code) {
        const std::size_t length = rest.find(' ');
        if (rest.substr(0, length) == name) return code;
        rest.remove_prefix(length + 1);
    }
    rejectPattern();
}

/// The character of a number of `digits` hexadecimal digits, of which it is the last eight bits.
char takeHexadecimal(PatternReader& reader, int digits) {
    unsigned code = 0;
    for (int i = 0; i < digits; ++i) {
        const char digit = lower(reader.takeAny());
        if (!isDigit(digit) && (digit < 'a' || digit > 'f')) rejectPattern();
        code = code * 16 + static_cast<unsigned>(isDigit(digit) ? digit - '0' : digit - 'a' + 10);
    }
    return static_cast<char>(code & 0xFFU);
}

/// Reads the parts of a bracket. A character waits until it is known whether it begins a range.
class Bracket {
public:
    explicit Bracket(PatternReader& reader) : reader_(reader) {}

    CharacterSet read() {
        const bool isInverted = reader_.take("^");
        if (reader_.take("-")) waiting_ = '-';
        while (!reader_.take("]")) readPart();
        flush();
        return isInverted ? ~set_ : set_;
    }

private:
    void readPart() {
        if (reader_.take("[.")) {
            wait(characterOf(reader_.takeUntil(".]")));
        } else if (reader_.take("[:")) {
            addClass(classOf(reader_.takeUntil(":]")));
        } else if (reader_.take("[=")) {
            addEquals(characterOf(reader_.takeUntil("=]")));
        } else if (reader_.take("-")) {
            readDash();
        } else if (const auto character = takeCharacter()) {
            wait(*character);
        }
    }

    /// A character, or nothing for a set, which is added.
    std::optional<char> takeCharacter() {
        if (!reader_.take("\\")) return reader_.takeAny();
        const Escape escape = readEscape(reader_, true);
        if (escape.kind == Escape::Kind::Character) return escape.letter;
        if (escape.kind != Escape::Kind::Set) rejectPattern();
        addClass(setOfEscape(escape));
        return std::nullopt;
    }

    /// After a dash, which means itself at either end and after a range.
    void readDash() {
        if (reader_.isAt("]")) return wait('-');
        if (isAfterClass_) rejectPattern();
        if (!waiting_) return wait('-');
        const char first = *waiting_;
        waiting_.reset();
        addRange(first, takeRangeEnd());
    }

    char takeRangeEnd() {
        if (reader_.isAt("[.") || reader_.isAt("[:") || reader_.isAt("[=")) rejectPattern();
        const auto last = takeCharacter();
        if (!last) rejectPattern();
        return *last;
    }

    /// In the order of signed characters, on every machine.
    void addRange(char first, char last) {
        const auto rank = [](char c) {
            const int value = static_cast<unsigned char>(c);
            return value <= SCHAR_MAX ? value : value - UCHAR_MAX - 1;
        };
        const int low = rank(first);
        const int high = rank(last);
        if (low > high) rejectPattern();
        for (int c = low; c <= high; ++c) add(set_, static_cast<char>(c));
        isAfterClass_ = false;
    }

    void wait(char character) {
        flush();
        waiting_ = character;
        isAfterClass_ = false;
    }

    void addClass(const CharacterSet& set) {
        flush();
        set_ |= set;
        isAfterClass_ = true;
    }

    void addEquals(char character) {
        CharacterSet equals;
        for (std::size_t code = 0; code < equals.size(); ++code)
            if (lower(static_cast<char>(code)) == lower(character)) equals.set(code);
        addClass(equals);
    }

    void flush() {
        if (waiting_) add(set_, *waiting_);
        waiting_.reset();
    }

    PatternReader& reader_;
    CharacterSet set_;
    std::optional<char> waiting_;
    bool isAfterClass_ = false;
};

}  // namespace

Escape readEscape(PatternReader& reader, bool isInBracket) {
    using Kind = Escape::Kind;
    if (!reader.isAt("0") && reader.isAtDigit()) return {Kind::Reference, 0, reader.takeNumber()};
    const char letter = reader.takeAny();
    switch (letter) {
        case '0':
            return {Kind::Character, '\0'};
        case 'f':
            return {Kind::Character, '\f'};
        case 'n':
            return {Kind::Character, '\n'};
        case 'r':
            return {Kind::Character, '\r'};
        case 't':
            return {Kind::Character, '\t'};
        case 'v':
            return {Kind::Character, '\v'};
        case 'b':
            if (isInBracket) return {Kind::Character, '\b'};
            return {Kind::Boundary, letter};
        case 'B':
            return {Kind::Boundary, letter};
        case 'd':
        case 'D':
        case 's':
        case 'S':
        case 'w':
        case 'W':
            return {Kind::Set, letter};
        case 'c':
            return {Kind::Character, reader.takeAny()};
        case 'x':
            return {Kind::Character, takeHexadecimal(reader, 2)};
        case 'u':
            return {Kind::Character, takeHexadecimal(reader, 4)};
        default:
            return {Kind::Character, letter};
    }
}

CharacterSet setOfEscape(const Escape& escape) {
    const CharacterSet set = classOf(std::string_view(&escape.letter, 1));
    return escape.isUpper() ? ~set : set;
}

CharacterSet readBracket(PatternReader& reader) {
    return Bracket(reader).read();
}

}  // namespace Parser
