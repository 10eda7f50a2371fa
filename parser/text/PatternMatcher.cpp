#include "parser/text/PatternMatcher.hpp"

#include <algorithm>

#include "parser/text/Characters.hpp"

namespace Parser {

namespace {

/// Of 16 bytes each.
constexpr std::size_t mostUndo = std::size_t{1} << 19U;
/// Characters that are passed over, or groups that are copied, in the time of a step.
constexpr std::size_t passedInAStep = 8;

bool isLineEnding(char c) {
    return c == '\n' || c == '\r';
}

}  // namespace

PatternMatcher::PatternMatcher(const Pattern& pattern, std::string_view text, std::uint64_t& steps)
    : pattern_(pattern),
      text_(text),
      steps_(steps),
      groups_(pattern.groups()),
      rounds_(pattern.states()) {}

bool PatternMatcher::matchAt(std::size_t begin, Context context) {
    spend(1 + groups_.size() / passedInAStep);
    undoAll(0);
    std::ranges::fill(groups_, Span{});
    context_ = context;
    if (!run(pattern_.start(), begin)) return false;
    match_ = {begin, end_, true};
    return true;
}

bool PatternMatcher::search(std::size_t from, bool seesBefore) {
    for (std::size_t at = from; at <= text_.size(); ++at) {
        const std::size_t passed = at;
        while (at < text_.size() && !pattern_.mayBeginWith(text_[at])) ++at;
        spend((at - passed) / passedInAStep);
        if (at == text_.size() && !pattern_.mayBeEmpty()) return false;
        if (matchAt(at, {seesBefore || at != from, false})) return true;
    }
    return false;
}

void PatternMatcher::spend(std::uint64_t steps) {
    if (steps_ < steps) throw PatternError(Facts::VariableFault::TooComplex);
    steps_ -= steps;
}

void PatternMatcher::remember(Undo::Kind kind, std::uint8_t count, std::uint32_t number,
                              std::size_t position) {
    if (undo_.size() == mostUndo) throw PatternError(Facts::VariableFault::TooComplex);
    undo_.push_back({kind, count, number, position});
}

/// Goes from `state` to an accepting one. Calls itself only for lookaheads, which a pattern nests a
/// limited number of times.
bool PatternMatcher::run(std::uint32_t state, std::size_t begin) {
    const std::size_t base = undo_.size();
    Place place{state, begin};
    while (pattern_.at(place.state).kind != PatternState::Kind::Accept ||
           !accepts(place.position, begin)) {
        spend(1);
        if (!advance(place, begin) && !goBack(base, place)) return false;
    }
    end_ = place.position;
    return true;
}

bool PatternMatcher::accepts(std::size_t position, std::size_t begin) const {
    return position != begin || !context_.takesSomething;
}

/// Goes on to the next state, unless this is the wrong way.
bool PatternMatcher::advance(Place& place, std::size_t begin) {
    const PatternState& state = pattern_.at(place.state);
    switch (state.kind) {
        case PatternState::Kind::Accept:
            return false;
        case PatternState::Kind::Set:
            if (place.position == text_.size() ||
                !pattern_.has(state.number, text_[place.position]))
                return false;
            ++place.position;
            break;
        case PatternState::Kind::Reference:
            if (!takeReference(state, place)) return false;
            break;
        case PatternState::Kind::GroupBegin:
            beginGroup(state, place.position);
            break;
        case PatternState::Kind::GroupEnd:
            endGroup(state, place.position);
            break;
        case PatternState::Kind::Alternatives:
        case PatternState::Kind::Repetition:
            choose(place);
            return true;
        case PatternState::Kind::Lookahead:
            if (lookAhead(state, place.position) == state.isInverted) return false;
            break;
        case PatternState::Kind::LineBegin:
            if (!isLineBegin(place.position, begin)) return false;
            break;
        case PatternState::Kind::LineEnd:
            if (!isLineEnd(place.position)) return false;
            break;
        case PatternState::Kind::WordBoundary:
            if (isWordBoundary(place.position, begin) == state.isInverted) return false;
            break;
    }
    place.state = state.next;
    return true;
}

bool PatternMatcher::takeReference(const PatternState& state, Place& place) {
    const Span& group = groups_[state.number];
    if (!group.isMatched) return false;
    const std::string_view taken = text_.substr(group.begin, group.end - group.begin);
    spend(taken.size() / passedInAStep);
    if (!text_.substr(place.position).starts_with(taken)) return false;
    place.position += taken.size();
    return true;
}

void PatternMatcher::beginGroup(const PatternState& state, std::size_t position) {
    Span& group = groups_[state.number];
    remember(Undo::Kind::SetGroupBegin, 0, state.number, group.begin);
    group.begin = position;
}

void PatternMatcher::endGroup(const PatternState& state, std::size_t position) {
    Span& group = groups_[state.number];
    remember(Undo::Kind::SetGroup, group.isMatched ? 1 : 0, state.number, group.end);
    group.end = position;
    group.isMatched = true;
}

void PatternMatcher::choose(Place& place) {
    const PatternState& state = pattern_.at(place.state);
    if (state.kind == PatternState::Kind::Alternatives) {
        remember(Undo::Kind::Try, 0, state.next, place.position);
        place.state = state.other;
    } else if (state.isInverted) {
        remember(Undo::Kind::Repeat, 0, place.state, place.position);
        place.state = state.next;
    } else {
        remember(Undo::Kind::Try, 0, state.next, place.position);
        if (!repeat(place)) {
            undo_.pop_back();
            place.state = state.next;
        }
    }
}

/// Begins a repetition once more, unless that changes nothing.
bool PatternMatcher::repeat(Place& place) {
    Rounds& rounds = rounds_[place.state];
    const bool isFirst = rounds.count == 0 || rounds.position != place.position;
    if (!isFirst && rounds.count == 2) return false;
    remember(Undo::Kind::SetRepetition, rounds.count, place.state, rounds.position);
    rounds = {place.position, static_cast<std::uint8_t>(isFirst ? 1 : 2)};
    place.state = pattern_.at(place.state).other;
    return true;
}

/// Goes back to the last place of a run from which there is another way.
bool PatternMatcher::goBack(std::size_t base, Place& place) {
    while (undo_.size() > base) {
        const Undo last = undo_.back();
        undo_.pop_back();
        place = {last.number, last.position};
        if (last.kind == Undo::Kind::Try) return true;
        if (last.kind == Undo::Kind::Repeat && repeat(place)) return true;
        undo(last);
    }
    return false;
}

void PatternMatcher::undo(const Undo& last) {
    if (last.kind == Undo::Kind::SetGroupBegin) {
        groups_[last.number].begin = last.position;
    } else if (last.kind == Undo::Kind::SetGroup) {
        groups_[last.number].end = last.position;
        groups_[last.number].isMatched = last.count != 0;
    } else if (last.kind == Undo::Kind::SetRepetition) {
        rounds_[last.number] = {last.position, last.count};
    }
}

void PatternMatcher::undoAll(std::size_t base) {
    for (; undo_.size() > base; undo_.pop_back()) undo(undo_.back());
}

/// What the groups of a lookahead took stays, even if the way leads back to before it.
bool PatternMatcher::lookAhead(const PatternState& state, std::size_t position) {
    spend(groups_.size() / passedInAStep);
    const std::size_t base = undo_.size();
    const std::size_t saved = saved_.size();
    saved_.insert(saved_.end(), groups_.begin(), groups_.end());
    const bool isThere = run(state.other, position);
    for (std::size_t i = 0; isThere && i < groups_.size(); ++i)
        if (groups_[i].isMatched) saved_[saved + i] = groups_[i];
    undoAll(base);
    std::copy(saved_.begin() + static_cast<std::ptrdiff_t>(saved), saved_.end(), groups_.begin());
    saved_.resize(saved);
    return isThere;
}

bool PatternMatcher::isLineBegin(std::size_t position, std::size_t begin) const {
    if (position == begin && !context_.seesBefore) return true;
    return position > 0 && isLineEnding(text_[position - 1]);
}

bool PatternMatcher::isLineEnd(std::size_t position) const {
    return position == text_.size() || isLineEnding(text_[position]);
}

bool PatternMatcher::isWordBoundary(std::size_t position, std::size_t begin) const {
    const bool isAfterWord = (position != begin || context_.seesBefore) && position > 0 &&
                             isWordCharacter(text_[position - 1]);
    return isAfterWord != (position < text_.size() && isWordCharacter(text_[position]));
}

}  // namespace Parser
