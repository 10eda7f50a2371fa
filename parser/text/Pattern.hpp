#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>
#include <vector>

#include "parser/text/PatternSyntax.hpp"

namespace Parser {

/// A state of the automaton of a pattern.
struct PatternState {
    enum class Kind : std::uint8_t {
        Accept,
        Set,
        Reference,
        GroupBegin,
        GroupEnd,
        Alternatives,  ///< `other` is tried before `next`.
        Repetition,    ///< `other` is once more, `next` is on.
        Lookahead,     ///< `other` begins what it looks for.
        LineBegin,
        LineEnd,
        WordBoundary
    };

    Kind kind;
    bool isInverted = false;   ///< as that of its term
    std::uint32_t number = 0;  ///< of a set or, from 0, of a group
    std::uint32_t next = 0;
    std::uint32_t other = 0;
};

/// A regular expression as an automaton.
class Pattern {
public:
    /// @throws PatternError  as `readPattern` does
    explicit Pattern(std::string_view text);

    const PatternState& at(std::uint32_t state) const { return states_[state]; }
    std::size_t states() const { return states_.size(); }
    std::size_t groups() const { return groups_; }
    std::uint32_t start() const { return start_; }

    bool has(std::uint32_t set, char character) const {
        return sets_[set][static_cast<unsigned char>(character)];
    }

    /// Whether a match may begin with `character`.
    bool mayBeginWith(char character) const {
        return first_[static_cast<unsigned char>(character)];
    }
    /// Whether a match may take no character at all.
    bool mayBeEmpty() const { return mayBeEmpty_; }

private:
    std::uint32_t add(const PatternState& state);
    std::uint32_t addTerm(const Term& term, std::uint32_t next);
    std::uint32_t addAlternatives(const Term& term, std::uint32_t next);
    std::uint32_t addGroup(const Term& term, std::uint32_t next);
    std::uint32_t addRepetition(const Term& term, std::uint32_t next);
    std::uint32_t addEndless(const Term& term, std::uint32_t next);
    void findFirst();

    std::vector<PatternState> states_;
    std::vector<CharacterSet> sets_;
    std::size_t groups_ = 0;
    std::uint32_t start_ = 0;
    CharacterSet first_;
    bool mayBeEmpty_ = false;
};

}  // namespace Parser
