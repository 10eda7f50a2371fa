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

/// A name that matches itself alone, within one line, by a value that does not look around.
bool isPlain(const Variable& variable) {
    constexpr std::string_view special = "^$\\.*+?()[]{}|\n";
    return !variable.name.empty() && variable.name.find_first_of(special) == std::string::npos &&
           variable.value.find("$`") == std::string::npos &&
           variable.value.find("$'") == std::string::npos;
}

/// Applies variables with plain names, each line by itself: no name reaches across a line feed.
/// In a line only those variables cost time that occur in it.
class PlainExpansion {
public:
    /// @param map    takes what became of the text, unless it is null
    /// @param first  index of the first variable in the map
    PlainExpansion(std::span<const Variable> variables, TextMap* map, std::size_t first)
        : map_(map), first_(first) {
        for (const Variable& variable : variables) {
            ranks_.emplace(variable.name, variables_.size());
            lengths_.insert(variable.name.size());
            markBeginning(variable.name);
            variables_.push_back(variable);
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

    void markBeginning(const std::string& name) {
        constexpr int characters = 256;
        if (name.size() > 1) beginnings_.set(pair(name[0], name[1]));
        for (int second = 0; name.size() == 1 && second < characters; ++second)
            beginnings_.set(pair(name[0], static_cast<char>(second)));
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
                if (found != ranks_.end() && found->second >= from)
                    best = std::min(best, found->second);
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
        if (line.size() > limits.walk) reportTooLong(variable.name);
        limits.walk -= line.size();
        std::string result;
        TextStage stage;
        std::size_t copied = 0;
        const MatchTexts texts{
            variable.name, {}, {}, [](std::size_t /*group*/) { return std::string_view(); }};
        for (std::size_t at = line.find(variable.name); at != std::string_view::npos;
             at = line.find(variable.name, copied)) {
            appendBounded(result, line.substr(copied, at - copied), limits.longestText);
            const std::size_t length = result.size();
            appendFormatted(result, variable.value, texts, limits.longestText);
            if (map_ != nullptr) {
                stage.keep(copied, at - copied);
                stage.insert(at, result.size() - length, first_ + rank);
                map_->use(first_ + rank, line, at, at + variable.name.size(),
                          start + inLine.originOf(at).offset);
            }
            copied = at + variable.name.size();
        }
        result += line.substr(copied);
        if (map_ != nullptr) {
            stage.keep(copied, line.size() - copied);
            inLine.add(stage);
        }
        return result;
    }

    TextMap* map_;
    std::size_t first_;
    std::vector<Variable> variables_;
    std::unordered_map<std::string_view, std::size_t> ranks_;
    std::set<std::size_t> lengths_;
    /// The first two characters that any name begins with.
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
    for (auto next = ordered.begin(); next != ordered.end();) {
        const auto plainEnd = std::find_if_not(next, ordered.end(), isPlain);
        if (plainEnd != next) {
            const auto first = static_cast<std::size_t>(next - ordered.begin());
            text = PlainExpansion(std::span(next, plainEnd), map, first).apply(text, limits);
            next = plainEnd;
        } else {
            text = patternApplied(text, *next, limits, map,
                                  static_cast<std::size_t>(next - ordered.begin()));
            ++next;
        }
    }
}

}  // namespace Parser
