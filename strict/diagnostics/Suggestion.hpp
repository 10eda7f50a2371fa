#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace Strict {

/// The edit distance of two words: insertions, deletions, replacements and swaps of neighbours,
/// case ignored.
std::size_t editDistance(std::string_view left, std::string_view right);

/// The one of `known` that `word` is most likely meant to be, or nothing if none is close: the
/// nearest by edit distance, with no more than one edit for every three characters, or two.
///
/// For words of the language and names of a script. Names of algorithms, devices and formats, which
/// mean something outside, go to `thingsMeant`.
std::optional<std::string> nearest(std::string_view word, std::span<const std::string> known);

/// "; did you mean X?", or nothing.
std::string didYouMean(std::string_view word, std::span<const std::string> known);

}  // namespace Strict
