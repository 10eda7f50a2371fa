#include "parser/ScriptGrammar.hpp"

#include <limits>

namespace Parser {

namespace {

using Spirit::alnum_p;
using Spirit::anychar_p;
using Spirit::blank_p;
using Spirit::ch_p;
using Spirit::eps_p;
using Spirit::space_p;
using Spirit::str_p;

/// One level of nested or chained expressions, of which there may be no more than the parser
/// admits: each level takes a piece of the stack.
class NestedExpression : public Spirit::parser<NestedExpression> {
public:
    NestedExpression(const Rule& expression, ScriptParser& owner)
        : expression_(&expression), owner_(&owner) {}

    template <class ScannerT>
    typename Spirit::parser_result<NestedExpression, ScannerT>::type parse(
        const ScannerT& scan) const {
        if (!owner_->enterExpression()) return scan.no_match();
        const auto hit = expression_->parse(scan);
        owner_->leaveExpression();
        return hit;
    }

private:
    const Rule* expression_;
    ScriptParser* owner_;
};

void defineLexis(ScriptRules& rules, ScriptParser& parser) {
    rules.ws = *space_p;
    rules.openBrace = rules.ws >> ch_p('{') >> rules.ws;
    rules.closeBrace = rules.ws >> ch_p('}') >> rules.ws;
    rules.equals = rules.ws >> ch_p('=') >> rules.ws;
    rules.separator = rules.ws >> *(ch_p(',') | ch_p(';')) >> rules.ws;
    rules.quote = ch_p('"') | ch_p('\'');
    rules.name = +(alnum_p | ch_p('#') | ch_p('@') | ch_p('_') | ch_p('-') | ch_p('!') | ch_p('<') |
                   ch_p('>') | ch_p('&'));
    rules.textArg =
        (rules.openBrace >> TextBefore("}", parser.fruitlessSearches.brace) >> rules.closeBrace) |
        (rules.quote >> TextBefore("\"'", parser.fruitlessSearches.quote) >> rules.quote >>
         *(anychar_p - space_p)) |
        +(anychar_p - space_p);
}

/// Every operator takes all that stands to its right, and its action runs behind that.
void defineExpressions(ScriptRules& rules, ScriptParser& parser) {
    using Number16 = Spirit::uint_parser<std::uint32_t, 16, 1, -1>;
    using Number10 = Spirit::uint_parser<std::uint32_t, 10, 1, -1>;
    const auto push = boost::bind(&ScriptParser::pushValue, &parser, boost::placeholders::_1);
    rules.hexPrefix = *ch_p('0') >> (ch_p('x') | ch_p('X'));
    rules.number = (rules.hexPrefix >> Number16()[push]) | Number10()[push];

    const NestedExpression nested(rules.expression, parser);
    const auto operation = [&](char sign, void (ScriptParser::*action)()) {
        return (
            ch_p(sign) >> *blank_p >> nested >>
            eps_p(boost::bind(&ScriptParser::hasOperands, &parser)))[boost::bind(action, &parser)];
    };
    rules.expression = +(
        (*blank_p >> operation('+', &ScriptParser::addValues)) |
        operation('-', &ScriptParser::subtractValues) |
        operation('*', &ScriptParser::multiplyValues) |
        operation('/', &ScriptParser::divideValues) | operation('%', &ScriptParser::moduloValues) |
        (ch_p('(') >> *blank_p >> nested >> ch_p(')')) | (rules.number >> *blank_p));

    rules.value =
        (eps_p(boost::bind(&ScriptParser::beginExpression, &parser)) >> rules.expression >>
         eps_p(boost::bind(&ScriptParser::isExpressionGood,
                           &parser)))[boost::bind(&ScriptParser::takeValue, &parser)];
    rules.valueList =
        rules.openBrace >>
        *(rules.value[boost::bind(&ScriptParser::collectValue, &parser)] >> rules.separator) >>
        rules.closeBrace;
    rules.area =
        rules.openBrace >> rules.value[boost::bind(&ScriptParser::setAreaStart, &parser)] >>
        rules.separator >> rules.value[boost::bind(&ScriptParser::setAreaLength, &parser)] >>
        rules.closeBrace;
}

/// CALCULATE makes no statement: it is how `calculate` has an expression evaluated.
void defineScript(ScriptRules& rules, ScriptParser& parser) {
    rules.script = rules.ws >> *(rules.newBufferCmd | rules.fillBufferCmd | rules.printTextCmd |
                                 rules.printBufferCmd | rules.printCrcCmd | rules.printHashCmd |
                                 rules.writeFileCmd | rules.newCrcCmd | rules.newHashCmd |
                                 rules.callAppCmd | rules.calculateCmd) >>
                   eps_p;
    rules.calculateCmd = str_p("CALCULATE") >> !TextBefore("[", parser.fruitlessSearches.bracket) >>
                         rules.ws >> ch_p('[') >> rules.ws >>
                         *rules.value[boost::bind(&ScriptParser::collectValue, &parser)] >>
                         rules.ws >> ch_p(']') >> rules.ws >> *(anychar_p - ch_p(']'));
}

}  // namespace

ScriptRules::ScriptRules(ScriptParser& parser) {
    defineLexis(*this, parser);
    defineExpressions(*this, parser);
    definePrintText(*this, parser);
    defineNewBuffer(*this, parser);
    defineFillBuffer(*this, parser);
    defineNewCrc(*this, parser);
    defineNewHash(*this, parser);
    defineWriteFile(*this, parser);
    definePrints(*this, parser);
    defineCallApp(*this, parser);
    defineScript(*this, parser);
}

ScriptParser::ScriptParser() = default;

ScriptParser::ScriptParser(std::string path, std::map<std::string, std::string> variables)
    : initialVariables(std::move(variables)), scriptPath(std::move(path)) {}

ScriptParser::~ScriptParser() = default;

ScriptParser::ParseResult ScriptParser::parseScript(std::string_view text) {
    if (!rules) rules = std::make_unique<const ScriptRules>(*this);
    beginText(text.size());
    const Position first = text.data();
    const auto info = Spirit::parse(first, first + text.size(), *this);
    return {info.stop, info.hit, info.full, static_cast<std::size_t>(info.length)};
}

}  // namespace Parser
