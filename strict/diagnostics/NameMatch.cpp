#include "strict/diagnostics/NameMatch.hpp"

#include <algorithm>
#include <array>
#include <functional>
#include <limits>

#include "strict/diagnostics/Suggestion.hpp"

namespace Strict {

namespace {

enum class Sort : unsigned char { Sign, Digit, Upper, Lower };

Sort sortOf(char c) {
    if (c >= '0' && c <= '9') return Sort::Digit;
    if (c >= 'A' && c <= 'Z') return Sort::Upper;
    return c >= 'a' && c <= 'z' ? Sort::Lower : Sort::Sign;
}

bool isNumber(std::string_view part) {
    return sortOf(part.front()) == Sort::Digit;
}

/// The words and numbers of a name in lower case: {sha, 3, 384}, {intel, hex, extended}.
using Parts = std::vector<std::string>;

Parts partsOf(std::string_view name) {
    Parts parts;
    Sort last = Sort::Sign;
    for (const char c : name) {
        const Sort sort = sortOf(c);
        const bool isSame = sort == last || (last == Sort::Upper && sort == Sort::Lower);
        if (sort != Sort::Sign && !isSame) parts.emplace_back();
        if (sort == Sort::Upper)
            parts.back() += static_cast<char>(c - 'A' + 'a');
        else if (sort != Sort::Sign)
            parts.back() += c;
        last = sort;
    }
    return parts;
}

std::string joined(const Parts& parts) {
    std::string text;
    for (const std::string& part : parts) text += part;
    return text;
}

Parts numbersOf(Parts parts) {
    std::erase_if(parts, [](const std::string& part) { return !isNumber(part); });
    return parts;
}

std::string lettersOf(Parts parts) {
    std::erase_if(parts, isNumber);
    return joined(parts);
}

bool isBeginning(const Parts& typed, const Parts& name) {
    if (typed.empty() || typed.size() > name.size()) return false;
    const std::size_t whole = typed.size() - 1;
    if (!std::equal(typed.begin(), typed.begin() + static_cast<std::ptrdiff_t>(whole),
                    name.begin()))
        return false;
    return isNumber(typed[whole]) ? typed[whole] == name[whole]
                                  : name[whole].starts_with(typed[whole]);
}

/// The letters that may be wrong: numbers tell the members of a family apart, and so do the letters
/// of a short name. The first of several words is that of the family, as in CRC-16/ARC.
std::size_t mostEdits(Parts words) {
    constexpr std::size_t lettersForAnEdit = 4;
    std::erase_if(words, isNumber);
    if (words.size() > 1) words.erase(words.begin());
    return joined(words).size() / lettersForAnEdit;
}

class Matcher {
public:
    Matcher(std::string_view typed, std::span<const KnownName> known)
        : known_(known), text_(typed), typed_(partsOf(typed)), joined_(joined(typed_)) {}

    std::vector<std::size_t> spelt() const {
        return those([&](const KnownName& one) {
            return one.name.size() == text_.size() && editDistance(one.name, text_) == 0;
        });
    }

    std::vector<std::size_t> whole() const {
        return those([&](const KnownName& one) { return joined(partsOf(one.name)) == joined_; });
    }

    std::vector<std::size_t> afterSlash() const {
        return those([&](const KnownName& one) {
            const std::size_t slash = one.name.find('/');
            return slash != std::string::npos &&
                   joined(partsOf(std::string_view(one.name).substr(slash))) == joined_;
        });
    }

    std::vector<std::size_t> beginning() const {
        constexpr std::size_t shortest = 3;
        if (joined_.size() < shortest) return {};
        return those([&](const KnownName& one) { return isBeginning(typed_, partsOf(one.name)); });
    }

    std::vector<std::size_t> misspelt() const {
        const Parts numbers = numbersOf(typed_);
        const std::string letters = lettersOf(typed_);
        std::size_t best = mostEdits(typed_);
        const auto edits = [&](const KnownName& one) {
            const Parts parts = partsOf(one.name);
            return numbersOf(parts) == numbers ? editDistance(letters, lettersOf(parts))
                                               : std::numeric_limits<std::size_t>::max();
        };
        for (const KnownName& one : known_) best = std::min(best, edits(one));
        return best == 0 ? std::vector<std::size_t>()
                         : those([&](const KnownName& one) { return edits(one) == best; });
    }

private:
    std::vector<std::size_t> those(const std::function<bool(const KnownName&)>& isMeant) const {
        std::vector<std::size_t> things;
        for (const KnownName& one : known_)
            if (isMeant(one) && std::ranges::find(things, one.thing) == things.end())
                things.push_back(one.thing);
        return things;
    }

    std::span<const KnownName> known_;
    std::string_view text_;
    Parts typed_;
    std::string joined_;
};

using Rule = std::vector<std::size_t> (Matcher::*)() const;

struct RankedRule {
    Rule rule;
    Likeness likeness;
};

constexpr std::array<RankedRule, 5> rules{{{&Matcher::spelt, Likeness::Whole},
                                           {&Matcher::whole, Likeness::Whole},
                                           {&Matcher::afterSlash, Likeness::Begun},
                                           {&Matcher::beginning, Likeness::Begun},
                                           {&Matcher::misspelt, Likeness::Misspelt}}};

/// Longer words are not names.
bool isName(std::string_view typed) {
    constexpr std::size_t longest = 64;
    return !typed.empty() && typed.size() <= longest &&
           std::ranges::any_of(typed, [](char c) { return sortOf(c) != Sort::Sign; });
}

}  // namespace

std::vector<std::size_t> thingsMeant(std::string_view typed, std::span<const KnownName> known,
                                     Likeness likeness) {
    if (!isName(typed)) return {};
    const Matcher matcher(typed, known);
    for (const RankedRule& ranked : rules) {
        if (ranked.likeness > likeness) break;
        if (auto things = (matcher.*ranked.rule)(); !things.empty()) return things;
    }
    return {};
}

}  // namespace Strict
