#include "parser/BoundedRegex.hpp"

#include <charconv>
#include <cstdint>
#include <iterator>
#include <regex>
#include <stdexcept>

#include "platform/Platform.hpp"

namespace Parser {

namespace {

/// A pattern is compiled by recursion too; longer ones than this are no names.
constexpr std::size_t longestPattern = 500;
/// Product of all repetition counts of a pattern times its length: the states of its automaton.
constexpr std::uint64_t mostStates = 2000;
constexpr std::uint64_t stepsForAnyText = 50'000'000;
constexpr std::uint64_t stepsForEachCharacter = 100;

/// What one evaluation may still use up.
struct Budget {
    std::uint64_t steps;
    std::uintptr_t stackTop;
    std::size_t stackBytes;

    void spend() {
        const volatile char here = 0;
        const auto position = reinterpret_cast<std::uintptr_t>(&here);
        const std::uintptr_t depth =
            position < stackTop ? stackTop - position : position - stackTop;
        if (depth > stackBytes) throw std::regex_error(std::regex_constants::error_stack);
        if (steps == 0) throw std::regex_error(std::regex_constants::error_complexity);
        --steps;
    }
};

/// A position in the text that counts how often the engine looks at a character, and from how deep.
class CheckedPosition {
public:
    using iterator_category = std::bidirectional_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    CheckedPosition() = default;
    CheckedPosition(const char* position, Budget* budget) : position_(position), budget_(budget) {}

    reference operator*() const {
        budget_->spend();
        return *position_;
    }
    CheckedPosition& operator++() {
        ++position_;
        return *this;
    }
    CheckedPosition operator++(int) {
        CheckedPosition old = *this;
        ++position_;
        return old;
    }
    CheckedPosition& operator--() {
        --position_;
        return *this;
    }
    CheckedPosition operator--(int) {
        CheckedPosition old = *this;
        --position_;
        return old;
    }
    bool operator==(const CheckedPosition& other) const { return position_ == other.position_; }

    const char* base() const { return position_; }

private:
    const char* position_ = nullptr;
    Budget* budget_ = nullptr;
};

/// Refuses patterns whose automaton would be too large to walk by recursion.
void checkSize(const std::string& pattern) {
    std::uint64_t states = pattern.size();
    for (std::size_t at = 0; at < pattern.size(); ++at) {
        if (pattern[at] != '{' && pattern[at] != ',') continue;
        unsigned count = 0;
        const char* const end = pattern.data() + pattern.size();
        const auto parsed = std::from_chars(pattern.data() + at + 1, end, count);
        if (parsed.ec == std::errc::result_out_of_range || count > mostStates) states = mostStates;
        if (count > 1) states *= count;
        if (states > mostStates) break;
    }
    if (pattern.size() > longestPattern || states > mostStates)
        throw std::regex_error(std::regex_constants::error_complexity);
}

void appendBounded(std::string& text, const char* first, const char* last, std::size_t longest) {
    if (static_cast<std::size_t>(last - first) > longest - text.size())
        throw std::length_error("expanded script");
    text.append(first, last);
}

}  // namespace

std::string replaceBounded(const std::string& text, const std::string& pattern,
                           const std::string& format, std::size_t longest) {
    checkSize(pattern);
    const std::regex expression(pattern, std::regex::ECMAScript | std::regex::multiline);
    const volatile char here = 0;
    Budget budget{stepsForAnyText + stepsForEachCharacter * text.size(),
                  reinterpret_cast<std::uintptr_t>(&here), Platform::usableStackBytes()};
    const CheckedPosition begin(text.data(), &budget);
    const CheckedPosition end(text.data() + text.size(), &budget);

    std::string result;
    const char* copied = text.data();
    using Matches = std::regex_iterator<CheckedPosition>;
    for (Matches match(begin, end, expression); match != Matches(); ++match) {
        appendBounded(result, copied, (*match)[0].first.base(), longest);
        std::string value;
        match->format(std::back_inserter(value), format);
        appendBounded(result, value.data(), value.data() + value.size(), longest);
        copied = (*match)[0].second.base();
    }
    appendBounded(result, copied, text.data() + text.size(), longest);
    return result;
}

}  // namespace Parser
