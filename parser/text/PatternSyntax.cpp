#include "parser/text/PatternSyntax.hpp"

#include <algorithm>
#include <optional>
#include <utility>

#include "parser/text/PatternReader.hpp"

namespace Parser {

namespace {

/// Longest pattern in characters. It limits the recursion of reader and compiler; longer ones are
/// no names.
constexpr std::size_t longestPattern = 500;
/// Product of all repetition counts of a pattern times its length: about the states of its
/// automaton.
constexpr std::size_t mostStates = 2000;

/// @throws PatternError  if the pattern is too long or would have too many states
void checkSize(std::string_view pattern) {
    std::size_t copies = 1;
    for (std::size_t at = 0; at < pattern.size() && copies <= mostStates; ++at)
        if (pattern[at] == '{' || pattern[at] == ',')
            copies *= std::clamp<std::size_t>(numberAt(pattern.substr(at + 1)), 1, mostStates);
    if (pattern.size() > longestPattern || copies * pattern.size() > mostStates)
        throw PatternError(Facts::VariableFault::TooComplex);
}

class SyntaxReader {
public:
    explicit SyntaxReader(std::string_view pattern) : reader_(pattern) {}

    PatternSyntax read() {
        syntax_.whole = alternatives();
        if (!reader_.isAtEnd()) rejectPattern();
        return std::move(syntax_);
    }

private:
    Term alternatives() {
        Term first = sequence();
        if (!reader_.isAt("|")) return first;
        Term all{Term::Kind::Alternatives};
        all.parts.push_back(std::move(first));
        while (reader_.take("|")) all.parts.push_back(sequence());
        return all;
    }

    Term sequence() {
        Term all{Term::Kind::Sequence};
        while (!reader_.isAtEnd() && !reader_.isAt("|") && !reader_.isAt(")"))
            all.parts.push_back(term());
        return all;
    }

    /// An assertion, which cannot be repeated, or an atom with its repetitions.
    Term term() {
        if (reader_.take("^")) return {Term::Kind::LineBegin};
        if (reader_.take("$")) return {Term::Kind::LineEnd};
        if (reader_.take("(?=")) return enclosed({Term::Kind::Lookahead});
        if (reader_.take("(?!")) return enclosed({Term::Kind::Lookahead, true});
        if (reader_.take("\\b")) return {Term::Kind::WordBoundary};
        if (reader_.take("\\B")) return {Term::Kind::WordBoundary, true};
        Term result = atom();
        while (const std::optional<Counts> counts = takeCounts()) {
            Term repeated{Term::Kind::Repetition, reader_.take("?"), counts->least, counts->most};
            repeated.parts.push_back(std::move(result));
            result = std::move(repeated);
        }
        return result;
    }

    Term atom() {
        if (reader_.take("(?:")) return enclosed({Term::Kind::Sequence});
        if (reader_.isAt("(?")) rejectPattern();
        if (reader_.take("(")) return group();
        if (reader_.take("[")) return one(readBracket(reader_));
        if (reader_.take("\\")) return escaped();
        if (reader_.take(".")) return one(~CharacterSet{}.set('\n').set('\r'));
        const char literal = reader_.takeAny();
        if (std::string_view("*+?{").find(literal) != std::string_view::npos) rejectPattern();
        return one(literal);
    }

    Term group() {
        const std::size_t number = ++syntax_.groups;
        open_.push_back(number);
        Term result = enclosed({Term::Kind::Group, false, number});
        open_.pop_back();
        return result;
    }

    /// `term` with all up to its closing parenthesis as its part.
    Term enclosed(Term term) {
        term.parts.push_back(alternatives());
        if (!reader_.take(")")) rejectPattern();
        return term;
    }

    Term escaped() {
        const Escape escape = readEscape(reader_, false);
        if (escape.kind == Escape::Kind::Set) return one(setOfEscape(escape));
        if (escape.kind == Escape::Kind::Character) return one(escape.letter);
        if (escape.group > syntax_.groups || std::ranges::count(open_, escape.group) != 0)
            rejectPattern();
        return {Term::Kind::Reference, false, escape.group};
    }

    Term one(char character) {
        return one(CharacterSet{}.set(static_cast<unsigned char>(character)));
    }

    Term one(const CharacterSet& set) {
        syntax_.sets.push_back(set);
        return {Term::Kind::Set, false, syntax_.sets.size() - 1};
    }

    struct Counts {
        std::size_t least;
        std::size_t most;
    };

    std::optional<Counts> takeCounts() {
        if (reader_.take("*")) return Counts{0, Term::endless};
        if (reader_.take("+")) return Counts{1, Term::endless};
        if (reader_.take("?")) return Counts{0, 1};
        if (!reader_.take("{")) return std::nullopt;
        Counts counts{};
        counts.least = counts.most = reader_.takeNumber();
        if (reader_.take(","))
            counts.most = reader_.isAtDigit() ? reader_.takeNumber() : Term::endless;
        if (!reader_.take("}") || counts.most < counts.least) rejectPattern();
        return counts;
    }

    PatternReader reader_;
    PatternSyntax syntax_;
    std::vector<std::size_t> open_;  ///< groups that are not closed yet
};

}  // namespace

PatternSyntax readPattern(std::string_view pattern) {
    checkSize(pattern);
    return SyntaxReader(pattern).read();
}

std::optional<std::vector<CharacterSet>> fixedSets(std::string_view pattern) {
    try {
        PatternSyntax syntax = readPattern(pattern);
        const auto isSet = [](const Term& term) { return term.kind == Term::Kind::Set; };
        const Term& whole = syntax.whole;
        if (whole.kind == Term::Kind::Sequence && std::ranges::all_of(whole.parts, isSet))
            return std::move(syntax.sets);
    } catch (const PatternError&) {
        // It is reported where it is applied.
    }
    return std::nullopt;
}

}  // namespace Parser
