#include "parser/text/Pattern.hpp"

#include <iterator>
#include <utility>

namespace Parser {

Pattern::Pattern(std::string_view text) {
    PatternSyntax syntax = readPattern(text);
    sets_ = std::move(syntax.sets);
    groups_ = syntax.groups;
    start_ = addTerm(syntax.whole, add({PatternState::Kind::Accept}));
    findFirst();
}

std::uint32_t Pattern::add(const PatternState& state) {
    states_.push_back(state);
    return static_cast<std::uint32_t>(states_.size() - 1);
}

/// Adds the states of `term`, which lead to `next`, and returns the one to start with.
std::uint32_t Pattern::addTerm(const Term& term, std::uint32_t next) {
    const auto number = static_cast<std::uint32_t>(term.number);
    switch (term.kind) {
        case Term::Kind::Sequence:
            for (auto part = term.parts.rbegin(); part != term.parts.rend(); ++part)
                next = addTerm(*part, next);
            return next;
        case Term::Kind::Alternatives:
            return addAlternatives(term, next);
        case Term::Kind::Group:
            return addGroup(term, next);
        case Term::Kind::Repetition:
            return addRepetition(term, next);
        case Term::Kind::Set:
            return add({PatternState::Kind::Set, false, number, next});
        case Term::Kind::Reference:
            return add({PatternState::Kind::Reference, false, number - 1, next});
        case Term::Kind::LineBegin:
            return add({PatternState::Kind::LineBegin, false, 0, next});
        case Term::Kind::LineEnd:
            return add({PatternState::Kind::LineEnd, false, 0, next});
        case Term::Kind::WordBoundary:
            return add({PatternState::Kind::WordBoundary, term.isInverted, 0, next});
        case Term::Kind::Lookahead:
            break;
    }
    const std::uint32_t body = addTerm(term.parts.front(), add({PatternState::Kind::Accept}));
    return add({PatternState::Kind::Lookahead, term.isInverted, 0, next, body});
}

std::uint32_t Pattern::addAlternatives(const Term& term, std::uint32_t next) {
    std::uint32_t rest = addTerm(term.parts.back(), next);
    for (auto part = std::next(term.parts.rbegin()); part != term.parts.rend(); ++part)
        rest = add({PatternState::Kind::Alternatives, false, 0, rest, addTerm(*part, next)});
    return rest;
}

std::uint32_t Pattern::addGroup(const Term& term, std::uint32_t next) {
    const auto number = static_cast<std::uint32_t>(term.number - 1);
    const std::uint32_t end = add({PatternState::Kind::GroupEnd, false, number, next});
    return add({PatternState::Kind::GroupBegin, false, number, addTerm(term.parts.front(), end)});
}

std::uint32_t Pattern::addRepetition(const Term& term, std::uint32_t next) {
    const Term& repeated = term.parts.front();
    // One copy is enough for one time or more.
    if (term.most == Term::endless && term.number == 1)
        return states_[addEndless(term, next)].other;
    const std::uint32_t end = next;
    if (term.most == Term::endless) next = addEndless(term, next);
    for (std::size_t i = term.number; term.most != Term::endless && i < term.most; ++i)
        next =
            add({PatternState::Kind::Repetition, term.isInverted, 0, end, addTerm(repeated, next)});
    for (std::size_t i = 0; i < term.number; ++i) next = addTerm(repeated, next);
    return next;
}

/// Adds the states of any number of times.
std::uint32_t Pattern::addEndless(const Term& term, std::uint32_t next) {
    const std::uint32_t choice = add({PatternState::Kind::Repetition, term.isInverted, 0, next, 0});
    const std::uint32_t body = addTerm(term.parts.front(), choice);
    states_[choice].other = body;
    return choice;
}

void Pattern::findFirst() {
    using Kind = PatternState::Kind;
    std::vector<bool> isReached(states_.size());
    std::vector<std::uint32_t> open{start_};
    while (!open.empty()) {
        const std::uint32_t number = open.back();
        open.pop_back();
        if (isReached[number]) continue;
        isReached[number] = true;
        const PatternState& state = states_[number];
        if (state.kind == Kind::Set) {
            first_ |= sets_[state.number];
            continue;
        }
        if (state.kind == Kind::Accept || state.kind == Kind::Reference) {
            mayBeEmpty_ = true;
            continue;
        }
        open.push_back(state.next);
        if (state.kind == Kind::Alternatives || state.kind == Kind::Repetition)
            open.push_back(state.other);
    }
    if (mayBeEmpty_) first_.set();
}

}  // namespace Parser
