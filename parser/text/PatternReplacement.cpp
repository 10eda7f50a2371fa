#include "parser/text/PatternReplacement.hpp"

#include <algorithm>
#include <string_view>

#include "parser/text/Pattern.hpp"
#include "parser/text/PatternMatcher.hpp"
#include "parser/text/ReplacementFormat.hpp"
#include "platform/Limits.hpp"

namespace Parser {

namespace {

/// A pattern that looks at each character a few times takes no more steps than these; the others
/// share the rest.
constexpr std::uint64_t stepsForEachCharacter = 100;
constexpr std::uint64_t sharedStepsForEachCharacter = 800;

/// Goes from match to match.
class Matches {
public:
    Matches(const Pattern& pattern, std::string_view text, std::uint64_t& steps)
        : matcher_(pattern, text, steps), text_(text) {}

    /// An empty match is followed by one that is not empty at the same place, if there is one.
    bool findNext() {
        const std::size_t from = matcher_.match().end;
        const bool isFirst = !matcher_.match().isMatched;
        if (isFirst || matcher_.match().begin != from) return search(from, !isFirst);
        if (from == text_.size()) return false;
        return matcher_.matchAt(from, {seesBefore_, true}) || search(from + 1, true);
    }

    const PatternMatcher::Span& match() const { return matcher_.match(); }

    /// @param from  where the text that was before the match begins
    MatchTexts texts(std::size_t from) const {
        return {text_.substr(match().begin, match().end - match().begin),
                text_.substr(from, match().begin - from), text_.substr(match().end),
                [this](std::size_t number) { return group(number); }};
    }

private:
    bool search(std::size_t from, bool seesBefore) {
        seesBefore_ = seesBefore;
        return matcher_.search(from, seesBefore);
    }

    std::string_view group(std::size_t number) const {
        if (number > matcher_.groups().size()) return {};
        const PatternMatcher::Span& span = matcher_.groups()[number - 1];
        return span.isMatched ? text_.substr(span.begin, span.end - span.begin)
                              : std::string_view();
    }

    PatternMatcher matcher_;
    std::string_view text_;
    bool seesBefore_ = false;
};

}  // namespace

PatternAllowance::PatternAllowance(std::size_t length)
    : scriptLength(length), steps(Platform::usableSteps() + sharedStepsForEachCharacter * length) {}

std::string replacePattern(const std::string& text, const std::string& pattern,
                           const std::string& format, std::size_t longest,
                           PatternAllowance& allowance, const ReplacementWatch& watch) {
    const Pattern automaton(pattern);
    // Text that values have added gets no steps of its own.
    const std::uint64_t own = std::min(
        allowance.ownSteps, stepsForEachCharacter * std::min(text.size(), allowance.scriptLength));
    const std::uint64_t available = allowance.steps + own;
    std::uint64_t steps = available;
    const std::string_view source = text;
    std::string result;
    std::size_t copied = 0;
    for (Matches matches(automaton, text, steps); matches.findNext();) {
        const auto [first, last, isMatched] = matches.match();
        appendBounded(result, source.substr(copied, first - copied), longest);
        const std::size_t start = result.size();
        appendFormatted(result, format, matches.texts(copied), longest);
        if (watch) watch(copied, first, last, result.size() - start);
        copied = last;
    }
    appendBounded(result, source.substr(copied), longest);
    allowance.steps = std::min(allowance.steps, steps);
    allowance.ownSteps -= std::min(own, available - steps);
    return result;
}

}  // namespace Parser
