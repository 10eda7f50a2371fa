#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace Parser {

/// What the evaluations of all patterns of one script may take together, beyond the little that
/// each may take for every character of the script.
struct PatternAllowance {
    /// @param length  of the script and its variables, in characters
    explicit PatternAllowance(std::size_t length);

    std::size_t scriptLength;
    std::uint64_t steps;
    /// What is left of the little that each may take, for all of them together: about a minute.
    std::uint64_t ownSteps = std::uint64_t{1} << 35U;
};

/// Is shown each replacement: the text [`copied`, `first`) stays, [`first`, `last`) becomes
/// `length` characters.
using ReplacementWatch = std::function<void(std::size_t copied, std::size_t first, std::size_t last,
                                            std::size_t length)>;

/// Replaces in `text` what `pattern`, a regular expression of ECMAScript grammar, matches by the
/// replacement format `format`. `^` and `$` match at the ends of lines.
///
/// @param allowance  what is left of it; less afterwards
/// @param watch      may be empty
/// @throws PatternError  for a pattern that is not valid, or that takes too much
/// @throws std::length_error  if the result would be longer than `longest` bytes
std::string replacePattern(const std::string& text, const std::string& pattern,
                           const std::string& format, std::size_t longest,
                           PatternAllowance& allowance, const ReplacementWatch& watch = {});

}  // namespace Parser
