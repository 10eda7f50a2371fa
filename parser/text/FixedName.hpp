#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "parser/text/PatternSyntax.hpp"

namespace Parser {

/// The name of a variable that takes one text, or one of the same length at each place: of the
/// names `a`, `a.b` and `a[0-9]` each takes a fixed number of characters, and of `a*` none does. It
/// takes no line feed.
class FixedName {
public:
    /// The name that matches itself alone.
    explicit FixedName(std::string text) : length_(text.size()), anchor_(std::move(text)) {}

    /// @param anchor  the place of a stretch of sets with one character each
    FixedName(std::vector<CharacterSet> sets, std::size_t anchor, std::size_t anchorLength);

    std::size_t length() const { return length_; }

    /// Characters that are part of every match, and how many of the match are before them.
    const std::string& anchor() const { return anchor_; }
    std::size_t beforeAnchor() const { return beforeAnchor_; }

    /// The name has places that take one of several characters.
    bool isPattern() const { return !sets_.empty(); }

    /// There is a match whose anchor is at `anchor` of `text`, where its characters are.
    bool isAround(std::size_t anchor, std::string_view text) const;

    /// The first match in `text` from `from` on, or `npos`.
    std::size_t findIn(std::string_view text, std::size_t from) const;

private:
    std::size_t length_;
    std::vector<CharacterSet> sets_;  ///< none if the anchor is all of the name
    std::string anchor_;
    std::size_t beforeAnchor_ = 0;
};

/// Which of `names`, which are regular expressions, are fixed. Those that could not be told apart
/// by their anchors are not among them.
std::vector<std::optional<FixedName>> fixedNames(std::span<const std::string_view> names);

}  // namespace Parser
