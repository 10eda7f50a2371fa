#pragma once

#include <algorithm>
#include <boost/spirit/include/classic_core.hpp>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "buffer/Overlap.hpp"
#include "parser/grammar/ParserState.hpp"

/// The grammar's rules, for the sources that define them and the one that parses.
namespace Parser {

namespace Spirit = boost::spirit::classic;

/// White space is skipped only where a rule says so.
using Scanner = Spirit::scanner<Position>;
using Rule = Spirit::rule<Scanner>;

/// A fixed word of the language.
class Keyword : public Spirit::parser<Keyword> {
public:
    /// @param expectations  where a failure is noted, if that is not null then
    Keyword(std::string_view word, Expectations* const& expectations)
        : word_(word), expectations_(&expectations) {}

    template <class ScannerT>
    typename Spirit::parser_result<Keyword, ScannerT>::type parse(const ScannerT& scan) const {
        const Position first = scan.first;
        if (!std::string_view(first, static_cast<std::size_t>(scan.last - first))
                 .starts_with(word_)) {
            if (*expectations_ != nullptr) (*expectations_)->miss(first, word_);
            return scan.no_match();
        }
        scan.first = first + word_.size();
        return scan.create_match(word_.size(), Spirit::nil_t(), first, scan.first);
    }

private:
    std::string_view word_;
    Expectations* const* expectations_;
};

/// A parser with a description, which is noted as missing where the parser fails.
template <class Subject>
class Expected : public Spirit::parser<Expected<Subject>> {
public:
    Expected(const Subject& subject, std::string_view description,
             Expectations* const& expectations)
        : subject_(subject), description_(description), expectations_(&expectations) {}

    template <class ScannerT>
    typename Spirit::parser_result<Expected, ScannerT>::type parse(const ScannerT& scan) const {
        const Position first = scan.first;
        const auto hit = subject_.parse(scan);
        if (hit)
            return scan.create_match(static_cast<std::size_t>(hit.length()), Spirit::nil_t(), first,
                                     scan.first);
        if (*expectations_ != nullptr) (*expectations_)->miss(first, description_);
        return scan.no_match();
    }

private:
    typename Subject::embed_t subject_;
    std::string_view description_;
    Expectations* const* expectations_;
};

/// The rules that all statements share, and the words of the language.
struct CommonRules {
    explicit CommonRules(ParserState& state);

    /// The parser of a word, which must outlive the rules. Each word is noted in `keywords`.
    Keyword keyword(const char* word) {
        keywords.emplace_back(word);
        return {keywords.back(), state_->expectations};
    }

    /// `subject` with a description for messages, which must outlive the rules.
    template <class Subject>
    Expected<Subject> expected(const char* description, const Subject& subject) const {
        return {subject, description, state_->expectations};
    }

    /// Where a keyword of a table that is missing is noted.
    Expectations* const& expectations() const { return state_->expectations; }

    Rule ws, openBrace, closeBrace, equals, separator, quote, name, textArg;
    Rule hexPrefix, number, expression, value, listedValue, valueList, area;
    Rule query, queryText;  ///< what a number asks, and a file or a symbol in it
    Rule notedValue;        ///< a value that is a part of a statement by itself

    /// The words that the rules compare a script with, in the order of their definition.
    std::vector<std::string_view> keywords;

private:
    void defineQueries();

    ParserState* state_;
    const WrapperLib::NumberFunction* function_ = nullptr;  ///< whose keyword was read last
    WrapperLib::Query query_ = {};                          ///< that is being read
};

/// The rules of one statement.
struct StatementRules {
    StatementRules() = default;
    virtual ~StatementRules() = default;
    StatementRules(const StatementRules&) = delete;
    StatementRules& operator=(const StatementRules&) = delete;

    Rule command;  ///< the whole statement and the white space after it
};

/// All rules of the language.
struct ScriptRules : CommonRules {
    explicit ScriptRules(ParserState& state);

    std::vector<std::unique_ptr<const StatementRules>> statements;
    std::vector<std::string_view> statementKeywords;  ///< the first word of each
    Rule script, calculateCmd;
};

/// The first of several rules that matches.
class FirstOf : public Spirit::parser<FirstOf> {
public:
    explicit FirstOf(std::vector<const Rule*> rules) : rules_(std::move(rules)) {}

    template <class ScannerT>
    typename Spirit::parser_result<FirstOf, ScannerT>::type parse(const ScannerT& scan) const {
        const Position first = scan.first;
        for (const Rule* rule : rules_) {
            const auto hit = rule->parse(scan);
            if (hit) return hit;
            scan.first = first;
        }
        return scan.no_match();
    }

private:
    std::vector<const Rule*> rules_;
};

/// One or more characters up to, and without, the next of the characters `stops`; no match if there
/// is none.
class TextBefore : public Spirit::parser<TextBefore> {
public:
    TextBefore(const char* stops, Position& fruitlessFrom)
        : stops_(stops), fruitlessFrom_(&fruitlessFrom) {}

    template <class ScannerT>
    typename Spirit::parser_result<TextBefore, ScannerT>::type parse(const ScannerT& scan) const {
        const Position first = scan.first;
        if (*fruitlessFrom_ != nullptr && first >= *fruitlessFrom_) return scan.no_match();
        const Position stop = std::find_if(first, scan.last, [this](char c) {
            return c != 0 && std::strchr(stops_, c) != nullptr;
        });
        if (stop == scan.last) *fruitlessFrom_ = first;
        if (stop == scan.last || stop == first) return scan.no_match();
        scan.first = stop;
        return scan.create_match(static_cast<std::size_t>(stop - first), Spirit::nil_t(), first,
                                 stop);
    }

private:
    const char* stops_;
    Position* fruitlessFrom_;
};

/// The keyword of one row of a table, tried in the table's order.
template <class Row>
class KeywordOf : public Spirit::parser<KeywordOf<Row>> {
public:
    /// @param matched  set to the row of the last match
    KeywordOf(std::span<const Row> rows, const Row*& matched, CommonRules& rules)
        : rows_(rows), matched_(&matched), expectations_(&rules.expectations()) {
        for (const Row& row : rows) rules.keyword(row.keyword);
    }

    template <class ScannerT>
    typename Spirit::parser_result<KeywordOf, ScannerT>::type parse(const ScannerT& scan) const {
        const Position first = scan.first;
        const std::string_view rest(first, static_cast<std::size_t>(scan.last - first));
        for (const Row& row : rows_) {
            const std::string_view keyword = row.keyword;
            if (!rest.starts_with(keyword)) continue;
            *matched_ = &row;
            scan.first = first + keyword.size();
            return scan.create_match(keyword.size(), Spirit::nil_t(), first, scan.first);
        }
        if (*expectations_ != nullptr)
            for (const Row& row : rows_) (*expectations_)->miss(first, row.keyword);
        return scan.no_match();
    }

private:
    std::span<const Row> rows_;
    const Row** matched_;
    Expectations* const* expectations_;
};

/// The actions of a statement of kind `Command`. Each appends its trace text, notes what the
/// matched text is to the statement, and then does its work.
template <class Command>
class StatementActions {
public:
    explicit StatementActions(ParserState& state) : state_(&state) {}

    /// The keyword was read.
    auto begin(const char* traceText) const {
        return [state = state_, traceText](Position first, Position last) {
            state->reset();
            state->statement.begin<Command>(traceText, first, last);
        };
    }

    /// The statement was read to its end.
    auto end() const {
        return
            [state = state_](Position first, Position last) { state->statement.end(first, last); };
    }

    /// Hands the matched text to a setter.
    auto text(const char* traceText, Role role, void (Command::*setter)(std::string),
              std::uint32_t choice = 0) const {
        const auto set = [setter](Command& command, std::string_view matched) {
            (command.*setter)(std::string(matched));
        };
        return with(traceText, role, set, choice);
    }

    /// Hands a fixed value, the choice of the part, to a setter.
    template <class Value>
    auto constant(const char* traceText, Role role, void (Command::*setter)(Value),
                  Value value) const {
        const auto set = [setter, value](Command& command, std::string_view) {
            (command.*setter)(value);
        };
        return with(traceText, role, set, static_cast<std::uint32_t>(value));
    }

    /// Hands the last number to a setter.
    auto number(const char* traceText, Role role, void (Command::*setter)(std::uint32_t),
                std::uint32_t choice = 0) const {
        const auto set = [state = state_, setter](Command& command, std::string_view) {
            command.whenKnown([&command, setter, amount = state->expression.current()] {
                (command.*setter)(static_cast<std::uint32_t>(amount.value()));
            });
        };
        return with(traceText, role, set, choice);
    }

    /// Hands the last value list to a setter, which takes it as it likes.
    template <class Values>
    auto values(const char* traceText, Role role, void (Command::*setter)(Values)) const {
        return with(traceText, role, [state = state_, setter](Command& command, std::string_view) {
            command.whenKnown(
                [&command, setter, list = state->statement.takeCollectedValues()]() mutable {
                    (command.*setter)(std::move(list).values());
                });
        });
    }

    /// Hands the last area to a setter.
    auto area(const char* traceText, Role role,
              void (Command::*setter)(const Buffer::Area&)) const {
        return with(traceText, role, [state = state_, setter](Command& command, std::string_view) {
            command.whenKnown([&command, setter, area = state->statement.area()] {
                (command.*setter)(area.value());
            });
        });
    }

    /// Hands the row of a keyword, which has a trace text, to a setter.
    ///
    /// @param matched  where KeywordOf leaves the row
    template <class Row>
    auto row(const Row* const& matched, Role role, void (Command::*setter)(const Row&)) const {
        return [state = state_, &matched, role, setter](Position first, Position last) {
            state->statement.step(matched->trace, role, first, last);
            Command& command = state->statement.command<Command>();
            command.whenKnown([&command, setter, matched] { (command.*setter)(*matched); });
        };
    }

    /// Lets `work` do something with the command and the matched text.
    template <class Work>
    auto with(const char* traceText, Role role, Work work, std::uint32_t choice = 0) const {
        return [state = state_, traceText, role, work, choice](Position first, Position last) {
            state->statement.step(traceText, role, first, last, choice);
            work(state->statement.command<Command>(),
                 std::string_view(first, static_cast<std::size_t>(last - first)));
        };
    }

private:
    ParserState* state_;
};

/// -useAreas = { { start, length } ... }
template <class Command>
auto areasOption(CommonRules& rules, const StatementActions<Command>& on) {
    return rules.keyword("-useAreas") >> rules.equals >> rules.openBrace >>
           *(rules.area[on.area("AddArea -> ", Role::Area, &Command::addArea)] >>
             rules.separator) >>
           rules.closeBrace >> rules.ws;
}

/// -setByteOrder = LittleEndian | BigEndian
template <class Command>
auto byteOrderOption(CommonRules& rules, const StatementActions<Command>& on) {
    using Buffer::ByteOrder;
    return rules.keyword("-setByteOrder") >> rules.equals >>
           (rules.keyword(
                "LittleEndian")[on.constant("SetByteOrder_LittleEndian -> ", Role::ByteOrder,
                                            &Command::setByteOrder, ByteOrder::LittleEndian)] |
            rules.keyword(
                "BigEndian")[on.constant("SetByteOrder_BigEndian -> ", Role::ByteOrder,
                                         &Command::setByteOrder, ByteOrder::BigEndian)]) >>
           rules.ws;
}

/// -onOverlap = Last | First | Same | Error
template <class Command>
auto overlapOption(CommonRules& rules, const StatementActions<Command>& on) {
    using Buffer::OverlapRule;
    const auto rule = [&](const char* word, const char* trace, OverlapRule value) {
        return rules.keyword(
            word)[on.constant(trace, Role::Overlap, &Command::setOverlapRule, value)];
    };
    return rules.keyword("-onOverlap") >> rules.equals >>
           (rule("Last", "SetOnOverlap_Last -> ", OverlapRule::Last) |
            rule("First", "SetOnOverlap_First -> ", OverlapRule::First) |
            rule("Same", "SetOnOverlap_Same -> ", OverlapRule::Same) |
            rule("Error", "SetOnOverlap_Error -> ", OverlapRule::Error)) >>
           rules.ws;
}

/// Gives a command the digit that an option has.
template <class Command>
auto settingDigit(void (Command::*setter)(std::uint32_t)) {
    return [setter](Command& command, std::string_view digit) {
        (command.*setter)(static_cast<std::uint32_t>(digit.front() - '0'));
    };
}

/// 2 | 4 | 8, as a whole word
template <class Command>
auto wordSize(CommonRules& rules, const StatementActions<Command>& on, const char* traceText,
              Role role, void (Command::*setter)(std::uint32_t)) {
    using Spirit::ch_p;
    return rules.expected(
        "2, 4 or 8",
        (ch_p('2') | ch_p('4') | ch_p('8')) >>
            ~Spirit::eps_p(Spirit::alnum_p))[on.with(traceText, role, settingDigit(setter))];
}

/// 2 | 4, as a whole word
template <class Command>
auto shortWordSize(CommonRules& rules, const StatementActions<Command>& on, const char* traceText,
                   Role role, void (Command::*setter)(std::uint32_t)) {
    return rules.expected(
        "2 or 4",
        (Spirit::ch_p('2') | Spirit::ch_p('4')) >>
            ~Spirit::eps_p(Spirit::alnum_p))[on.with(traceText, role, settingDigit(setter))];
}

/// -setAddressUnit = 2 | 4
template <class Command>
auto addressUnitOption(CommonRules& rules, const StatementActions<Command>& on) {
    return rules.keyword("-setAddressUnit") >> rules.equals >>
           shortWordSize(rules, on, "SetAddressUnit -> ", Role::AddressUnit,
                         &Command::setAddressUnit) >>
           rules.ws;
}

/// -setValueSize = 2 | 4
template <class Command>
auto valueSizeOption(CommonRules& rules, const StatementActions<Command>& on) {
    return rules.keyword("-setValueSize") >> rules.equals >>
           shortWordSize(rules, on, "SetValueSize -> ", Role::ValueSize, &Command::setValueSize) >>
           rules.ws;
}

/// -swapBytes = 2 | 4 | 8
template <class Command>
auto swapOption(CommonRules& rules, const StatementActions<Command>& on) {
    return rules.keyword("-swapBytes") >> rules.equals >>
           wordSize(rules, on, "SetSwapBytes -> ", Role::SwapBytes, &Command::setSwappedWord) >>
           rules.ws;
}

/// [-resolveSymbolsAsHexValue = { name ... }] ...
template <class Command>
auto symbolsOption(CommonRules& rules, const StatementActions<Command>& on) {
    return rules.ws >>
           *(rules.keyword("-resolveSymbolsAsHexValue") >> rules.equals >> rules.ws >>
             rules.openBrace >> *(rules.name[on.text("AddResolveSymbolName -> ", Role::UsesValue,
                                                     &Command::addSymbol)] >>
                                  rules.separator) >>
             rules.closeBrace) >>
           rules.ws;
}

/// FROM_BUFFERS { name ... } | FROM_BUFFER name. The longer keyword comes first.
template <class Command, class Base>
auto buffersSource(CommonRules& rules, const StatementActions<Command>& on, const char* traceText,
                   void (Base::*setter)(std::string)) {
    return (rules.keyword("FROM_BUFFERS") >> rules.ws >> rules.openBrace >>
            *(rules.name[on.text(traceText, Role::UsesImage, setter)] >> rules.separator) >>
            rules.closeBrace) |
           (rules.keyword("FROM_BUFFER") >> rules.ws >>
            rules.name[on.text(traceText, Role::UsesImage, setter)]);
}

}  // namespace Parser
