#pragma once

#include <charconv>
#include <cstddef>
#include <limits>
#include <string_view>
#include <system_error>

#include "parser/text/PatternSyntax.hpp"

namespace Parser {

[[noreturn]] inline void rejectPattern() {
    throw PatternError(Facts::VariableFault::NotARegularExpression);
}

/// The number at the start of `digits`; the largest there is for one that is larger.
inline std::size_t numberAt(std::string_view digits) {
    std::size_t number = 0;
    const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return parsed.ec == std::errc::result_out_of_range ? std::numeric_limits<std::size_t>::max()
                                                       : number;
}

/// The text of a pattern, from which its parts are taken one by one.
class PatternReader {
public:
    explicit PatternReader(std::string_view pattern) : rest_(pattern) {}

    bool isAtEnd() const { return rest_.empty(); }
    bool isAt(std::string_view text) const { return rest_.starts_with(text); }
    bool isAtDigit() const {
        return !rest_.empty() && rest_.front() >= '0' && rest_.front() <= '9';
    }

    /// Takes `text` if it is next.
    bool take(std::string_view text) {
        if (!isAt(text)) return false;
        rest_.remove_prefix(text.size());
        return true;
    }

    /// @throws PatternError  at the end
    char takeAny() {
        if (rest_.empty()) rejectPattern();
        const char next = rest_.front();
        rest_.remove_prefix(1);
        return next;
    }

    /// Takes all text before `end`, and `end`.
    ///
    /// @throws PatternError  if it does not come
    std::string_view takeUntil(std::string_view end) {
        const std::size_t length = rest_.find(end);
        if (length == std::string_view::npos) rejectPattern();
        const std::string_view text = rest_.substr(0, length);
        rest_.remove_prefix(length + end.size());
        return text;
    }

    /// @throws PatternError  if no digit is next
    std::size_t takeNumber() {
        if (!isAtDigit()) rejectPattern();
        const std::size_t number = numberAt(rest_);
        while (isAtDigit()) rest_.remove_prefix(1);
        return number;
    }

private:
    std::string_view rest_;
};

/// What follows a backslash, within a bracket and elsewhere.
struct Escape {
    enum class Kind : std::uint8_t { Character, Set, Boundary, Reference };

    Kind kind = Kind::Character;
    char letter = 0;        ///< the character that is meant; of a set or a boundary, its letter
    std::size_t group = 0;  ///< of a reference

    bool isUpper() const { return letter >= 'A' && letter <= 'Z'; }
};

/// Reads what follows a backslash.
Escape readEscape(PatternReader& reader, bool isInBracket);

/// The characters of the escape `\d`, `\s`, `\w` or one of their opposites.
CharacterSet setOfEscape(const Escape& escape);

/// Reads a bracket expression after its opening bracket.
CharacterSet readBracket(PatternReader& reader);

}  // namespace Parser
