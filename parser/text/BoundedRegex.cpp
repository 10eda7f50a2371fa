#include "parser/text/BoundedRegex.hpp"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <limits>
#include <regex>
#include <stdexcept>
#include <string_view>

#include "platform/Limits.hpp"

namespace Parser {

namespace {

#if !defined(__GLIBCXX__) || _GLIBCXX_RELEASE != 12
#error "The budgets below were measured on the <regex> of libstdc++ 12; measure them again"
#endif

/// Facts of one engine, the <regex> of libstdc++ 12. It compiles and matches by recursion, one
/// level for each state or character.
struct Engine {
    /// Longest pattern in characters. It limits the recursion of the compiler; longer ones are no
    /// names.
    static constexpr std::size_t longestPattern = 500;
    /// Product of all repetition counts of a pattern times its length: the states of its automaton.
    static constexpr std::uint64_t mostStates = 2000;
    /// A pattern that looks at each character a few times takes no more steps than these; the
    /// others share the rest.
    static constexpr std::uint64_t stepsForEachCharacter = 100;
    static constexpr std::uint64_t sharedStepsForEachCharacter = 800;
    /// Entries of a table of all states that are cleared in the time of one step.
    static constexpr std::uint64_t clearedInAStep = 8;
};

/// What one evaluation may still consume.
struct Budget {
    std::uint64_t steps;
    std::uint64_t price;  ///< of one step
    std::uintptr_t stackTop;
    std::size_t stackBytes;

    void spend(std::uint64_t count) {
        if (steps / price < count) throw std::regex_error(std::regex_constants::error_complexity);
        steps -= price * count;
    }

    void spendOne() {
        const volatile char here = 0;
        const auto position = reinterpret_cast<std::uintptr_t>(&here);
        const std::uintptr_t depth =
            position < stackTop ? stackTop - position : position - stackTop;
        if (depth > stackBytes) throw std::regex_error(std::regex_constants::error_stack);
        if (steps < price) throw std::regex_error(std::regex_constants::error_complexity);
        steps -= price;
    }
};

/// A position in the text that counts what the engine does with it, and from how deep. The engine
/// tries a way through the pattern by copying positions into groups and repetitions, comparing
/// them with the ends of the text and looking at characters; each of these is a step.
class CheckedPosition {
public:
    using iterator_category = std::bidirectional_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    CheckedPosition() = default;
    CheckedPosition(const char* position, Budget* budget) : position_(position), budget_(budget) {}
    CheckedPosition(const CheckedPosition& other)
        : position_(other.position_), budget_(other.budget_) {
        spend();
    }
    CheckedPosition& operator=(const CheckedPosition& other) = default;
    ~CheckedPosition() = default;

    reference operator*() const {
        spend();
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
    bool operator==(const CheckedPosition& other) const {
        spend();
        return position_ == other.position_;
    }

    const char* base() const { return position_; }

private:
    void spend() const {
        if (budget_ != nullptr) budget_->spendOne();
    }

    const char* position_ = nullptr;
    Budget* budget_ = nullptr;
};

/// The cost of a pattern, as far as its characters show it.
struct PatternSize {
    std::uint64_t states;
    std::uint64_t alternatives;
    bool hasReference = false;  ///< to a group, as in "\1"
    bool hasLookahead = false;

    /// The steps that the engine may take between two counted ones. A reference to a group that
    /// took no part in the match fails without a look at the text, after every combination of empty
    /// alternatives before it. For a lookahead the engine clears a table of all states.
    std::uint64_t price() const {
        const std::uint64_t combinations =
            hasReference ? std::uint64_t{1} << std::min(alternatives, mostCombined) : 1;
        return combinations * (hasLookahead ? 1 + states / Engine::clearedInAStep : 1);
    }

private:
    /// Enough to make one step dearer than any budget.
    static constexpr std::uint64_t mostCombined = 48;
};

/// The number at the start of `digits`; the largest there is for one that is larger.
std::uint64_t numberAt(std::string_view digits) {
    std::uint64_t number = 0;
    const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return parsed.ec == std::errc::result_out_of_range ? std::numeric_limits<std::uint64_t>::max()
                                                       : number;
}

/// @throws std::regex_error  if the automaton would be too large to walk by recursion, or for a
///         reference to a group that no pattern can have: the engine would compute its number
///         beyond the range of its type
PatternSize sizeOf(const std::string& pattern) {
    std::uint64_t copies = 1;
    bool isEscaped = false;
    PatternSize size{};
    for (std::size_t at = 0; at < pattern.size() && copies <= Engine::mostStates; ++at) {
        const std::string_view rest = std::string_view(pattern).substr(at);
        if (rest.front() == '|') ++size.alternatives;
        if (rest.front() == '\\' && rest.size() > 1 && rest[1] >= '1' && rest[1] <= '9') {
            size.hasReference = true;
            if (!isEscaped && numberAt(rest.substr(1)) > Engine::longestPattern)
                throw std::regex_error(std::regex_constants::error_backref);
        }
        isEscaped = rest.front() == '\\' && !isEscaped;
        if (rest.starts_with("(?=") || rest.starts_with("(?!")) size.hasLookahead = true;
        if (rest.front() != '{' && rest.front() != ',') continue;
        copies *= std::clamp<std::uint64_t>(numberAt(rest.substr(1)), 1, Engine::mostStates);
    }
    size.states = copies * pattern.size();
    size.alternatives *= copies;
    if (pattern.size() > Engine::longestPattern || size.states > Engine::mostStates)
        throw std::regex_error(std::regex_constants::error_complexity);
    return size;
}

void appendBounded(std::string& text, const char* first, const char* last, std::size_t longest) {
    if (static_cast<std::size_t>(last - first) > longest - text.size())
        throw std::length_error("expanded script");
    text.append(first, last);
}

}  // namespace

RegexAllowance::RegexAllowance(std::size_t length)
    : scriptLength(length),
      steps(Platform::usableSteps() + Engine::sharedStepsForEachCharacter * length) {}

std::string replaceBounded(const std::string& text, const std::string& pattern,
                           const std::string& format, std::size_t longest,
                           RegexAllowance& allowance, const ReplacementWatch& watch) {
    const PatternSize size = sizeOf(pattern);
    const std::regex expression(pattern, std::regex::ECMAScript | std::regex::multiline);
    const volatile char here = 0;
    // Text that values have added gets no steps of its own.
    const std::size_t length = std::min(text.size(), allowance.scriptLength);
    Budget budget{allowance.steps + Engine::stepsForEachCharacter * length, size.price(),
                  reinterpret_cast<std::uintptr_t>(&here), Platform::usableStackBytes()};
    const CheckedPosition begin(text.data(), &budget);
    const CheckedPosition end(text.data() + text.size(), &budget);

    std::string result;
    const char* copied = text.data();
    const auto offset = [&text](const char* position) {
        return static_cast<std::size_t>(position - text.data());
    };
    using Matches = std::regex_iterator<CheckedPosition>;
    for (Matches match(begin, end, expression); match != Matches(); ++match) {
        // Each search clears a table of all states, and an empty match is followed by two.
        budget.spend(1 + 2 * size.states / Engine::clearedInAStep);
        appendBounded(result, copied, (*match)[0].first.base(), longest);
        std::string value;
        match->format(std::back_inserter(value), format);
        appendBounded(result, value.data(), value.data() + value.size(), longest);
        if (watch)
            watch(offset(copied), offset((*match)[0].first.base()),
                  offset((*match)[0].second.base()), value.size());
        copied = (*match)[0].second.base();
    }
    appendBounded(result, copied, text.data() + text.size(), longest);
    allowance.steps = std::min(allowance.steps, budget.steps);
    return result;
}

}  // namespace Parser
