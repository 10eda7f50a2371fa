#include "parser/text/FixedName.hpp"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace Parser {

namespace {

/// Names with one anchor are tried one after the other wherever it occurs.
constexpr std::size_t mostOfAnAnchor = 32;

/// A stretch of sets that have one character each.
struct Stretch {
    std::size_t at;
    std::string text;
};

char characterOf(const CharacterSet& set) {
    std::size_t value = 0;
    while (!set[value]) ++value;
    return static_cast<char>(value);
}

std::vector<Stretch> stretchesOf(const std::vector<CharacterSet>& sets) {
    std::vector<Stretch> stretches;
    for (std::size_t i = 0; i < sets.size(); ++i) {
        if (sets[i].count() != 1) continue;
        if (stretches.empty() || stretches.back().at + stretches.back().text.size() != i)
            stretches.push_back({i, {}});
        stretches.back().text += characterOf(sets[i]);
    }
    return stretches;
}

/// A name without a special character matches itself.
bool isPlain(std::string_view name) {
    return !name.empty() && name.find_first_of("^$\\.*+?()[]{}|\n") == std::string_view::npos;
}

/// The sets of a name that is no plain one, if it is fixed and takes no line feed.
std::optional<std::vector<CharacterSet>> setsWithinLine(std::string_view name) {
    auto sets = fixedSets(name);
    const auto takesLineFeed = [](const CharacterSet& set) { return set['\n']; };
    if (sets && (sets->empty() || std::ranges::any_of(*sets, takesLineFeed))) sets.reset();
    return sets;
}

}  // namespace

FixedName::FixedName(std::vector<CharacterSet> sets, std::size_t anchor, std::size_t anchorLength)
    : length_(sets.size()), beforeAnchor_(anchor) {
    for (std::size_t i = anchor; i < anchor + anchorLength; ++i) anchor_ += characterOf(sets[i]);
    if (anchorLength != sets.size()) sets_ = std::move(sets);
}

bool FixedName::isAround(std::size_t anchor, std::string_view text) const {
    if (anchor < beforeAnchor_ || length_ > text.size() - (anchor - beforeAnchor_)) return false;
    const std::string_view match = text.substr(anchor - beforeAnchor_);
    for (std::size_t i = 0; i < sets_.size(); ++i)
        if (!sets_[i][static_cast<unsigned char>(match[i])]) return false;
    return true;
}

std::size_t FixedName::findIn(std::string_view text, std::size_t from) const {
    for (std::size_t at = text.find(anchor_, from + beforeAnchor_); at != std::string_view::npos;
         at = text.find(anchor_, at + 1))
        if (isAround(at, text)) return at - beforeAnchor_;
    return std::string_view::npos;
}

std::vector<std::optional<FixedName>> fixedNames(std::span<const std::string_view> names) {
    std::vector<std::optional<FixedName>> fixed(names.size());
    std::vector<std::pair<std::size_t, std::vector<CharacterSet>>> patterns;  // by their names
    std::unordered_map<std::string, std::size_t> uses;  // of each text by patterns
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (isPlain(names[i])) {
            fixed[i].emplace(std::string(names[i]));
        } else if (auto sets = setsWithinLine(names[i])) {
            for (const Stretch& stretch : stretchesOf(*sets)) ++uses[stretch.text];
            patterns.emplace_back(i, std::move(*sets));
        }
    }
    for (auto& [name, sets] : patterns) {
        const std::vector<Stretch> stretches = stretchesOf(sets);
        const auto best = std::ranges::min_element(stretches, {}, [&](const Stretch& stretch) {
            return std::pair(uses[stretch.text], names.size() - stretch.text.size());
        });
        if (best != stretches.end() && uses[best->text] <= mostOfAnAnchor)
            fixed[name].emplace(std::move(sets), best->at, best->text.size());
    }
    return fixed;
}

}  // namespace Parser
