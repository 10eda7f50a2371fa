#include "parser/grammar/ScriptGrammar.hpp"

#include <boost/bind/bind.hpp>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "parser/commands/Conventions.hpp"
#include "parser/commands/LateNumber.hpp"
#include "parser/grammar/Keywords.hpp"
#include "parser/grammar/Statements.hpp"

namespace Parser {

namespace {

using Spirit::alnum_p;
using Spirit::anychar_p;
using Spirit::blank_p;
using Spirit::ch_p;
using Spirit::eps_p;
using Spirit::space_p;
using WrapperLib::Operator;

/// One level of nested or chained expressions.
class NestedExpression : public Spirit::parser<NestedExpression> {
public:
    NestedExpression(const Rule& rule, Expression& expression)
        : rule_(&rule), expression_(&expression) {}

    template <class ScannerT>
    typename Spirit::parser_result<NestedExpression, ScannerT>::type parse(
        const ScannerT& scan) const {
        if (!expression_->enter()) return scan.no_match();
        const auto hit = rule_->parse(scan);
        expression_->leave();
        return hit;
    }

private:
    const Rule* rule_;
    Expression* expression_;
};

/// Nothing, in front of a letter where a number may ask. Most numbers end at another sign, so that
/// no word is looked for there.
class QueryStart : public Spirit::parser<QueryStart> {
public:
    explicit QueryStart(const Expression& expression) : expression_(&expression) {}

    template <class ScannerT>
    typename Spirit::parser_result<QueryStart, ScannerT>::type parse(const ScannerT& scan) const {
        const Position first = scan.first;
        const bool isLetter = first != scan.last && *first >= 'a' && *first <= 'z';
        if (!isLetter || !expression_->takesQueries()) return scan.no_match();
        return scan.create_match(0, Spirit::nil_t(), first, first);
    }

private:
    const Expression* expression_;
};

void defineLexis(CommonRules& rules, FruitlessSearches& searches) {
    rules.ws = *space_p;
    rules.openBrace = rules.ws >> rules.expected("{", ch_p('{')) >> rules.ws;
    rules.closeBrace = rules.ws >> rules.expected("}", ch_p('}')) >> rules.ws;
    rules.equals = rules.ws >> rules.expected("=", ch_p('=')) >> rules.ws;
    rules.separator = rules.ws >> *(ch_p(',') | ch_p(';')) >> rules.ws;
    rules.quote = rules.expected("a quote", ch_p('"') | ch_p('\''));
    rules.name =
        rules.expected("a name", +(alnum_p | ch_p('#') | ch_p('@') | ch_p('_') | ch_p('-') |
                                   ch_p('!') | ch_p('<') | ch_p('>') | ch_p('&')));
    rules.textArg = (rules.openBrace >> TextBefore("}", searches.brace) >> rules.closeBrace) |
                    (rules.quote >> TextBefore("\"'", searches.quote) >> rules.quote >>
                     *(anychar_p - space_p)) |
                    rules.expected("a text", +(anychar_p - space_p));
}

/// An operator takes everything to its right, and its action runs after that has been parsed.
void defineExpressions(CommonRules& rules, Expression& expression) {
    using Number16 = Spirit::uint_parser<std::uint32_t, 16, 1, -1>;
    using Number10 = Spirit::uint_parser<std::uint32_t, 10, 1, -1>;
    const auto push = boost::bind(&Expression::pushValue, &expression, boost::placeholders::_1);
    rules.hexPrefix = *ch_p('0') >> (ch_p('x') | ch_p('X'));
    rules.number =
        rules.expected("a number", (rules.hexPrefix >> Number16()[push]) | Number10()[push]) |
        (QueryStart(expression) >> rules.query);

    const NestedExpression nested(rules.expression, expression);
    const auto operation = [&](char sign, Operator action) {
        return (
            ch_p(sign) >> *blank_p >> nested >>
            eps_p(boost::bind(&Expression::hasOperands,
                              &expression)))[boost::bind(&Expression::apply, &expression, action)];
    };
    rules.expression =
        +((*blank_p >> operation('+', Operator::Add)) | operation('-', Operator::Subtract) |
          operation('*', Operator::Multiply) | operation('/', Operator::Divide) |
          operation('%', Operator::Modulo) | (ch_p('(') >> *blank_p >> nested >> ch_p(')')) |
          (rules.number >> *blank_p));
    rules.value =
        (eps_p(boost::bind(&Expression::begin, &expression)) >> rules.expression >>
         eps_p(boost::bind(&Expression::isGood,
                           &expression)))[boost::bind(&Expression::takeValue, &expression)];
}

/// Hands the last value to an operation of the statement.
auto takingValue(ParserState& state, void (StatementBuilder::*take)(const WrapperLib::Amount&)) {
    return [&state, take](Position first, Position last) {
        const WrapperLib::Amount& value = state.expression.current();
        state.statement.noteValue(value, first, last);
        (state.statement.*take)(value);
    };
}

void defineLists(CommonRules& rules, ParserState& state) {
    rules.notedValue = rules.value[([&state](Position first, Position last) {
        state.statement.noteValue(state.expression.current(), first, last);
    })];
    rules.listedValue = rules.value[takingValue(state, &StatementBuilder::collectValue)];
    rules.valueList =
        rules.openBrace >> *(rules.listedValue >> rules.separator) >> rules.closeBrace;
    rules.area =
        rules.openBrace >> rules.value[takingValue(state, &StatementBuilder::setAreaStart)] >>
        rules.separator >> rules.value[takingValue(state, &StatementBuilder::setAreaLength)] >>
        rules.closeBrace;
}

}  // namespace

/// startOf(@App), symbolOf(app.elf, main) and their like. Files and symbols with signs of the
/// language in them are in quotes or braces.
void CommonRules::defineQueries() {
    FruitlessSearches& searches = state_->fruitlessSearches;
    const auto take = [this](Role role, std::string WrapperLib::Query::*field) {
        return [this, role, field](Position first, Position last) {
            state_->statement.noteQuery(role, first, last);
            query_.*field = WrapperLib::cleanedPath(std::string(first, last));
        };
    };
    const auto begin = [this](Position, Position) { query_ = {function_->property, {}}; };
    const auto end = [this](Position first, Position last) {
        query_.length = static_cast<std::size_t>(last - first);
        state_->expression.pushQuery(std::move(query_));
    };
    const auto open = ws >> expected("(", ch_p('(')) >> ws;
    const auto close = ws >> expected(")", ch_p(')'));
    queryText = (ch_p('{') >> TextBefore("}", searches.brace) >> ch_p('}')) |
                (quote >> TextBefore("\"'", searches.quote) >> quote) |
                expected("a text", +(anychar_p - (space_p | ch_p(',') | ch_p('(') | ch_p(')') |
                                                  ch_p('{') | ch_p('}') | ch_p('"') | ch_p('\''))));
    query = (((KeywordOf(WrapperLib::imageFunctions(), function_, *this)[begin] >> open >>
               name[take(Role::MeasuresImage, &WrapperLib::Query::subject)]) |
              (KeywordOf(WrapperLib::symbolFunctions(), function_, *this)[begin] >> open >>
               queryText[take(Role::SymbolFile, &WrapperLib::Query::subject)] >> ws >>
               expected("a comma", ch_p(',')) >> ws >>
               queryText[take(Role::Symbol, &WrapperLib::Query::symbol)])) >>
             close)[end];
}

CommonRules::CommonRules(ParserState& state) : state_(&state) {
    defineLexis(*this, state.fruitlessSearches);
    defineQueries();
    defineExpressions(*this, state.expression);
    defineLists(*this, state);
}

/// CALCULATE makes no statement: `calculated` has its expression evaluated by it.
ScriptRules::ScriptRules(ParserState& state) : CommonRules(state) {
    std::vector<const Rule*> alternatives;
    for (const StatementRow& row : statementRows) {
        const std::size_t words = keywords.size();
        statements.push_back(row.define(*this, state));
        statementKeywords.push_back(keywords[words]);
        alternatives.push_back(&statements.back()->command);
    }
    alternatives.push_back(&calculateCmd);
    script = ws >> *FirstOf(alternatives) >> eps_p;
    const auto note = [&state](Position first, Position last) {
        state.statement.noteCalculation(first, last);
    };
    calculateCmd = (keyword("CALCULATE") >> !TextBefore("[", state.fruitlessSearches.bracket) >>
                    ws >> ch_p('[') >> ws >> *listedValue >> ws >> ch_p(']') >> ws >>
                    *(anychar_p - ch_p(']')))[note];
}

std::vector<std::string> keywords() {
    ParserState state(nullptr);
    const ScriptRules rules(state);
    return {rules.keywords.begin(), rules.keywords.end()};
}

std::vector<StatementWord> statementWords() {
    ParserState state(nullptr);
    const ScriptRules rules(state);
    std::vector<StatementWord> words;
    for (std::size_t i = 0; i < statementRows.size(); ++i)
        words.push_back({std::string(rules.statementKeywords[i]), statementRows[i].meaning});
    return words;
}

}  // namespace Parser
