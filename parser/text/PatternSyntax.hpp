#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "facts/Facts.hpp"

namespace Parser {

/// A pattern that cannot be applied.
class PatternError : public std::exception {
public:
    explicit PatternError(Facts::VariableFault fault) : fault_(fault) {}
    Facts::VariableFault fault() const { return fault_; }

private:
    Facts::VariableFault fault_;
};

/// The characters that one place of a pattern takes, by their value as an unsigned byte.
using CharacterSet = std::bitset<256>;

/// A part of a pattern.
struct Term {
    static constexpr std::size_t endless = std::numeric_limits<std::size_t>::max();

    enum class Kind : std::uint8_t {
        Sequence,
        Alternatives,
        Set,        ///< one character of the set `number`
        Reference,  ///< what the group `number` matched last
        Group,      ///< the group `number`
        Lookahead,
        LineBegin,
        LineEnd,
        WordBoundary,
        Repetition  ///< of its one part, `number` to `most` times
    };

    Kind kind = Kind::Sequence;
    /// A lookahead or a boundary that must not be there; a repetition that takes as few as it can.
    bool isInverted = false;
    std::size_t number = 0;
    std::size_t most = 0;
    std::vector<Term> parts{};
};

/// A pattern as its text describes it.
struct PatternSyntax {
    Term whole;
    std::vector<CharacterSet> sets;
    std::size_t groups = 0;  ///< The first one has the number 1.
};

/// Reads a regular expression of ECMAScript grammar, with the extensions that POSIX has for
/// brackets:
/// [:class:], [.name.] and [=character=]. Characters are bytes, classes those of the C locale.
///
/// @throws PatternError  if it is not valid; also if it is longer than 500 characters, or if its
///                       repetitions multiply to more than about 2,000 states
PatternSyntax readPattern(std::string_view pattern);

/// The sets of `pattern`, one for each character that it takes, if it is nothing but a sequence of
/// them.
std::optional<std::vector<CharacterSet>> fixedSets(std::string_view pattern);

}  // namespace Parser
