#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace Parser {

/// What a replacement format speaks of.
struct MatchTexts {
    std::string_view match;
    std::string_view before;  ///< from the previous match on
    std::string_view after;
    /// The text of a group, from 1 on; empty for one that took no part, or that the pattern has
    /// not.
    std::function<std::string_view(std::size_t)> group;
};

/// Appends `format` as ECMAScript reads it: `$&` and `$0` are the match, `$1` to `$99` its groups,
/// "$`" and `$'` the text before and after it, `$$` a dollar sign.
///
/// @throws std::length_error  if `text` would grow beyond `longest` bytes
void appendFormatted(std::string& text, std::string_view format, const MatchTexts& texts,
                     std::size_t longest);

/// @throws std::length_error  if `text` would grow beyond `longest` bytes
void appendBounded(std::string& text, std::string_view part, std::size_t longest);

}  // namespace Parser
