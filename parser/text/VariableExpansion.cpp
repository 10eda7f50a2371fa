#include "parser/text/VariableExpansion.hpp"

#include <algorithm>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <set>
#include <span>
#include <stdexcept>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "parser/text/FixedName.hpp"
#include "parser/text/PatternReplacement.hpp"
#include "parser/text/PatternSyntax.hpp"
#include "parser/text/ReplacementFormat.hpp"

namespace Parser {

namespace {

/// What the expansion of one script may come to. Values that hold names that hold values can double
/// a text again and again, and walk through all of it for every name.
struct Limits {
    /// @param scriptSize  length of the text and of all values
    explicit Limits(std::size_t scriptSize)
        : longestText(longestOfAny + longestForEachCharacter * scriptSize),
          walk(walkOfAny + walkForEachCharacter * scriptSize),
          allowance(scriptSize) {}

    std::size_t longestText;
    /// Characters that may be walked through yet, those of a line once for each name in it.
    std::uint64_t walk;
    /// The same for fixed names that are patterns.
    std::uint64_t patternWalk = std::uint64_t{1} << 34U;
    PatternAllowance allowance;

private:
    static constexpr std::size_t longestOfAny = std::size_t{1} << 26U;
    static constexpr std::size_t longestForEachCharacter = 4;
    static constexpr std::uint64_t walkOfAny = std::uint64_t{1} << 27U;
    static constexpr std::uint64_t walkForEachCharacter = 256;
};

struct Variable {
    std::string name;
    std::string value;
};

[[noreturn]] void reportTooLong(const std::string& name) {
    throw VariableError(name, Facts::VariableFault::ScriptTooLong);
}

/// The variables in the order in which they are applied.
std::vector<Variable> inOrder(const std::map<std::string, std::string>& variables) {
    std::vector<Variable> ordered;
    ordered.reserve(variables.size());
    for (const auto& [name, value] : variables) ordered.push_back({name, value});
    std::ranges::stable_sort(ordered, [](const Variable& left, const Variable& right) {
        if (left.name.size() != right.name.size()) return left.name.size() > right.name.size();
        return left.name > right.name;
    });
    return ordered;
}

/// The variables whose names are fixed and whose values do not look around.
std::vector<std::optional<FixedName>> fixedNamesOf(const std::vector<Variable>& variables) {
    std::vector<std::string_view> names;
    names.reserve(variables.size());
    for (const Variable& variable : variables) {
        const bool looksAround = variable.value.find("$`") != std::string::npos ||
                                 variable.value.find("$'") != std::string::npos;
        names.push_back(looksAround ? std::string_view() : variable.name);
    }
    return fixedNames(names);
}

/// Applies variables with fixed names, each line by itself: no name reaches across a line feed.
/// In a line only those variables cost time that occur in it.
class FixedExpansion {
public:
    /// @param names  of the variables, all of them there
    /// @param map    takes what became of the text, unless it is null
    /// @param first  index of the first variable in the map
    FixedExpansion(std::span<const Variable> variables,
                   std::span<const std::optional<FixedName>> names, TextMap* map, std::size_t first)
        : variables_(variables), names_(names), map_(map), first_(first) {
        for (std::size_t rank = 0; rank < names.size(); ++rank) {
            const std::string& anchor = names[rank]->anchor();
            ranks_[anchor].push_back(rank);
            lengths_.insert(anchor.size());
            markBeginning(anchor);
        }
    }

    std::string apply(std::string_view text, Limits& limits) const {
        std::string result;
        result.reserve(text.size());
        TextStage stage;
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t lineEnd = std::min(text.find('\n', at), text.size() - 1) + 1;
            appendLine(result, text.substr(at, lineEnd - at), at, stage, limits);
            at = lineEnd;
        }
        if (map_ != nullptr) map_->add(stage);
        return result;
    }

private:
    static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

    static std::size_t pair(char first, char second) {
        return static_cast<std::size_t>(static_cast<unsigned char>(first)) << 8U |
               static_cast<unsigned char>(second);
    }

    void markBeginning(const std::string& anchor) {
        constexpr int characters = 256;
        if (anchor.size() > 1) beginnings_.set(pair(anchor[0], anchor[1]));
        for (int second = 0; anchor.size() == 1 && second < characters; ++second)
            beginnings_.set(pair(anchor[0], static_cast<char>(second)));
    }

    /// The first variable in order, from rank `from` on, that occurs in `line`.
    std::size_t firstRank(std::string_view line, std::size_t from) const {
        std::size_t best = none;
        for (std::size_t at = 0; at < line.size(); ++at) {
            const char second = at + 1 < line.size() ? line[at + 1] : '\0';
            if (!beginnings_[pair(line[at], second)]) continue;
            for (const std::size_t length : lengths_) {
                if (length > line.size() - at) break;
                const auto found = ranks_.find(line.substr(at, length));
                if (found == ranks_.end()) continue;
                for (const std::size_t rank : found->second)
                    if (rank >= from && rank < best && names_[rank]->isAround(at, line))
                        best = rank;
            }
        }
        return best;
    }

    void appendLine(std::string& result, std::string_view source, std::size_t at, TextStage& stage,
                    Limits& limits) const {
        std::size_t rank = firstRank(source, 0);
        if (rank == none) {
            result += source;
            if (map_ != nullptr) stage.keep(at, source.size());
            return;
        }
        std::string line(source);
        TextMap inLine;
        for (; rank != none; rank = firstRank(line, rank + 1)) {
            try {
                line = replaced(line, rank, at, inLine, limits);
            } catch (const std::length_error&) {
                reportTooLong(variables_[rank].name);
            }
        }
        if (map_ != nullptr) stage.append(inLine.stage(), at);
        if (line.size() > limits.longestText - std::min(limits.longestText, result.size()))
            reportTooLong(variables_.front().name);
        result += line;
    }

    /// @param start   of the line in the text
    /// @param inLine  what became of the line so far, if there is a map
    std::string replaced(std::string_view line, std::size_t rank, std::size_t start,
                         TextMap& inLine, Limits& limits) const {
        const Variable& variable = variables_[rank];
        const FixedName& name = *names_[rank];
        std::uint64_t& walk = name.isPattern() ? limits.patternWalk : limits.walk;
        if (line.size() > walk) reportTooLong(variable.name);
        walk -= line.size();
        std::string result;
        TextStage stage;
        std::size_t copied = 0;
        MatchTexts texts{{}, {}, {}, [](std::size_t /*group*/) { return std::string_view(); }};
        for (std::size_t at = name.findIn(line, 0); at != std::string_view::npos;
             at = name.findIn(line, copied)) {
            texts.match = line.substr(at, name.length());
            appendBounded(result, line.substr(copied, at - copied), limits.longestText);
            const std::size_t length = result.size();
            appendFormatted(result, variable.value, texts, limits.longestText);
            if (map_ != nullptr) {
                stage.keep(copied, at - copied);
                stage.insert(at, result.size() - length, first_ + rank);
                map_->use(first_ + rank, line, at, at + name.length(),
                          start + inLine.originOf(at).offset);
            }
            copied = at + name.length();
        }
        result += line.substr(copied);
        if (map_ != nullptr) {
            stage.keep(copied, line.size() - copied);
            inLine.add(stage);
        }
        return result;
    }

    std::span<const Variable> variables_;
    std::span<const std::optional<FixedName>> names_;
    TextMap* map_;
    std::size_t first_;
    std::unordered_map<std::string_view, std::vector<std::size_t>> ranks_;  ///< by anchors
    std::set<std::size_t> lengths_;                                         ///< of anchors
    /// The first two characters that any anchor begins with.
    std::bitset<std::size_t{1} << 16U> beginnings_;
};

std::string patternApplied(const std::string& text, const Variable& variable, Limits& limits,
                           TextMap* map, std::size_t index) {
    try {
        TextStage stage;
        std::optional<std::size_t> end;  ///< of the last match
        ReplacementWatch watch;
        if (map != nullptr)
            watch = [&](std::size_t copied, std::size_t first, std::size_t last,
                        std::size_t length) {
                stage.keep(copied, first - copied);
                stage.insert(first, length, index);
                map->use(index, text, first, last, first);
                end = last;
            };
        std::string result = replacePattern(text, variable.name, variable.value, limits.longestText,
                                            limits.allowance, watch);
        if (end) {
            stage.keep(*end, text.size() - *end);
            map->add(stage);
        }
        return result;
    } catch (const PatternError& error) {
        throw VariableError(variable.name, error.fault());
    } catch (const std::length_error&) {
        reportTooLong(variable.name);
    }
}

}  // namespace

void expandVariables(std::string& text, const std::map<std::string, std::string>& variables,
                     TextMap* map) {
    const std::vector<Variable> ordered = inOrder(variables);
    std::size_t scriptSize = text.size();
    for (const Variable& variable : ordered) scriptSize += variable.value.size();
    Limits limits(scriptSize);
    if (map != nullptr) {
        std::vector<TextMap::Variable> known;
        known.reserve(ordered.size());
        for (const auto& [name, value] : ordered) known.push_back({name, value, false, {}});
        map->setVariables(std::move(known));
    }
    const std::span<const Variable> all = ordered;
    const std::vector<std::optional<FixedName>> names = fixedNamesOf(ordered);
    for (std::size_t next = 0; next < all.size();) {
        std::size_t end = next;
        while (end < all.size() && names[end]) ++end;
        if (end != next) {
            const std::size_t count = end - next;
            text = FixedExpansion(all.subspan(next, count), std::span(names).subspan(next, count),
                                  map, next)
                       .apply(text, limits);
            next = end;
        } else {
            text = patternApplied(text, all[next], limits, map, next);
            ++next;
        }
    }
}

}  // namespace Parser
