#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace Strict {

/// The one of `known` that `word` is most likely meant to be, or nothing if none is close: the
/// nearest by edit distance (insertions, deletions, replacements and swaps of neighbours), case
/// ignored, with no more than one edit for every three characters, or two.
std::optional<std::string> nearest(std::string_view word, std::span<const std::string> known);

/// "; did you mean X?", or nothing.
std::string didYouMean(std::string_view word, std::span<const std::string> known);

}  // namespace Strict
