#include "strict/diagnostics/Suggestion.hpp"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace Strict {

namespace {

/// Longer words are not typing errors of a keyword.
constexpr std::size_t longestWord = 64;

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// The weight of an abbreviation: all letters of `word` in their order, the first of them at the
/// beginning or after an underscore; of a name with a slash only what follows the slash. It counts
/// as two edits, a shorter one than four letters as none.
std::size_t abbreviation(std::string_view word, std::string_view candidate) {
    constexpr std::size_t shortest = 4;
    constexpr std::size_t weight = 2;
    if (word.size() < shortest) return longestWord;
    const std::size_t begin = candidate.find('/') + 1;
    for (std::size_t start = begin; start < candidate.size(); ++start) {
        if (start != begin && candidate[start - 1] != '_') continue;
        std::size_t matched = 0;
        for (std::size_t at = start; at < candidate.size() && matched < word.size(); ++at)
            if (lower(candidate[at]) == lower(word[matched])) ++matched;
        if (matched == word.size() && lower(candidate[start]) == lower(word[0])) return weight;
    }
    return longestWord;
}

}  // namespace

std::size_t editDistance(std::string_view left, std::string_view right) {
    std::vector<std::vector<std::size_t>> rows(left.size() + 1,
                                               std::vector<std::size_t>(right.size() + 1));
    for (std::size_t i = 0; i <= left.size(); ++i) rows[i][0] = i;
    for (std::size_t j = 0; j <= right.size(); ++j) rows[0][j] = j;
    for (std::size_t i = 1; i <= left.size(); ++i) {
        for (std::size_t j = 1; j <= right.size(); ++j) {
            const bool isSame = lower(left[i - 1]) == lower(right[j - 1]);
            std::size_t best = std::min(
                {rows[i - 1][j] + 1, rows[i][j - 1] + 1, rows[i - 1][j - 1] + (isSame ? 0U : 1U)});
            if (i > 1 && j > 1 && lower(left[i - 1]) == lower(right[j - 2]) &&
                lower(left[i - 2]) == lower(right[j - 1]))
                best = std::min(best, rows[i - 2][j - 2] + 1);
            rows[i][j] = best;
        }
    }
    return rows[left.size()][right.size()];
}

std::optional<std::string> nearest(std::string_view word, std::span<const std::string> known) {
    if (word.empty() || word.size() > longestWord) return std::nullopt;
    constexpr std::size_t always = 2;
    constexpr std::size_t charactersForAnEdit = 3;
    std::size_t best = std::max(always, word.size() / charactersForAnEdit) + 1;
    std::optional<std::string> found;
    for (const std::string& candidate : known) {
        if (candidate.size() > longestWord) continue;
        const std::size_t edits =
            std::min(editDistance(word, candidate), abbreviation(word, candidate));
        if (edits >= best || edits >= candidate.size()) continue;
        best = edits;
        found = candidate;
    }
    return found;
}

std::string didYouMean(std::string_view word, std::span<const std::string> known) {
    const auto found = nearest(word, known);
    return found ? "; did you mean " + *found + "?" : "";
}

}  // namespace Strict
