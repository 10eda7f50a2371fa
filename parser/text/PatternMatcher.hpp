#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "parser/text/Pattern.hpp"

namespace Parser {

/// Searches a text for a pattern, from the first way through it to the last, and takes the first
/// one that leads to its end. What is left to try is kept in a list of bounded length, not on the
/// stack.
class PatternMatcher {
public:
    struct Span {
        std::size_t begin = 0;
        std::size_t end = 0;
        bool isMatched = false;
    };

    /// What a match depends on beside the text from its place on.
    struct Context {
        /// Whether the text before the place counts, for `^` and `\b`.
        bool seesBefore;
        /// Whether an empty match, or an empty lookahead, does not count.
        bool takesSomething;
    };

    /// @param steps  each of a few nanoseconds that may be taken yet; less afterwards
    PatternMatcher(const Pattern& pattern, std::string_view text, std::uint64_t& steps);

    /// Whether there is a match at `begin`.
    ///
    /// @throws PatternError  if it takes too many steps or too much memory to find out
    bool matchAt(std::size_t begin, Context context);

    /// Whether there is a match at `from` or after it; text before `from` counts for those after
    /// it.
    ///
    /// @throws PatternError  as above
    bool search(std::size_t from, bool seesBefore);

    /// The last match.
    const Span& match() const { return match_; }
    /// What its groups took; the first one has the index 0.
    const std::vector<Span>& groups() const { return groups_; }

private:
    /// What is to be done when a way turns out to be wrong.
    struct Undo {
        enum class Kind : std::uint8_t { Try, Repeat, SetGroupBegin, SetGroup, SetRepetition };

        Kind kind;
        std::uint8_t count;    ///< of a repetition; whether a group is matched
        std::uint32_t number;  ///< of a state or group
        std::size_t position;
    };

    /// How often a repetition was begun at its last position. A second time at the same one, which
    /// nothing but empty matches can lead to, lets a group take the empty text; a third one changes
    /// nothing.
    struct Rounds {
        std::size_t position = 0;
        std::uint8_t count = 0;
    };

    /// A place of a way.
    struct Place {
        std::uint32_t state;
        std::size_t position;
    };

    void spend(std::uint64_t steps);
    void remember(Undo::Kind kind, std::uint8_t count, std::uint32_t number, std::size_t position);
    bool run(std::uint32_t state, std::size_t begin);
    bool advance(Place& place, std::size_t begin);
    bool accepts(std::size_t position, std::size_t begin) const;
    bool takeReference(const PatternState& state, Place& place);
    void beginGroup(const PatternState& state, std::size_t position);
    void endGroup(const PatternState& state, std::size_t position);
    void choose(Place& place);
    bool repeat(Place& place);
    bool goBack(std::size_t base, Place& place);
    void undo(const Undo& last);
    void undoAll(std::size_t base);
    bool lookAhead(const PatternState& state, std::size_t position);
    bool isLineBegin(std::size_t position, std::size_t begin) const;
    bool isLineEnd(std::size_t position) const;
    bool isWordBoundary(std::size_t position, std::size_t begin) const;

    const Pattern& pattern_;
    std::string_view text_;
    std::uint64_t& steps_;
    Context context_{};
    Span match_;
    std::size_t end_ = 0;  ///< of the last run that matched
    std::vector<Span> groups_;
    std::vector<Rounds> rounds_;  ///< of each state
    std::vector<Undo> undo_;
    std::vector<Span> saved_;  ///< groups before the lookaheads that are being tried
};

}  // namespace Parser
