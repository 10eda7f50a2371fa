#pragma once

#include <algorithm>
#include <string_view>
#include <vector>

#include "parser/grammar/Position.hpp"

namespace Parser {

/// The furthest position at which a parse failed, and what could have been there.
struct Expectations {
    Position furthest = nullptr;
    std::vector<std::string_view> words;  ///< words of the language, or descriptions as "a name"

    /// Notes that `word` was looked for at `position` and was not there.
    void miss(Position position, std::string_view word) {
        if (furthest != nullptr && position < furthest) return;
        if (position != furthest) words.clear();
        furthest = position;
        if (std::ranges::find(words, word) == words.end()) words.push_back(word);
    }

    /// Notes the same of a word without which nothing else at `position` helps.
    void missNeeded(Position position, std::string_view word) {
        miss(position, word);
        if (position == furthest) words.assign(1, word);
    }
};

}  // namespace Parser
