#pragma once

#include <algorithm>
#include <boost/bind/bind.hpp>
#include <boost/spirit/include/classic_core.hpp>
#include <cstring>
#include <span>

#include "parser/ScriptParser.hpp"
#include "parser/commands/CmdNewCrc.hpp"

/// The grammar's rules, for the sources that define them and no other.
namespace Parser {

namespace Spirit = boost::spirit::classic;

/// White space is skipped nowhere but where a rule says so.
using Scanner = Spirit::scanner<Position>;
using Rule = Spirit::rule<Scanner>;

/// All rules of the language. The frame is defined in ScriptGrammar.cpp, a statement's own rules
/// beside its command.
struct ScriptRules {
    explicit ScriptRules(ScriptParser& parser);

    Rule ws, openBrace, closeBrace, equals, separator, quote, name, textArg;
    Rule hexPrefix, number, expression, value, valueList, area;
    Rule script, calculateCmd;
    Rule printTextCmd, printTextOptions;
    Rule newBufferCmd, newSource, newOptions, newStartAddressOption, startAddressSetting,
        newByteOrderOption, newAreasOption, bufferRangeOption;
    Rule fillBufferCmd, fillSource, fillOptions, fillByteOrderOption, fillAreasOption;
    Rule newCrcCmd, crcSource, crcOptions, crcAreasOption, crcTypeOption;
    Rule newHashCmd, hashSource, hashOptions, hashAreasOption, hashTypeOption;
    Rule writeFileCmd, writeBuffers, writeOptions, formatOption, executionAddressOption;
    Rule printBufferCmd, printBufferOptions, printCrcCmd, printHashCmd;
    Rule callAppCmd, callAppArguments, callAppOptions;
};

void definePrintText(ScriptRules& rules, ScriptParser& parser);
void defineNewBuffer(ScriptRules& rules, ScriptParser& parser);
void defineFillBuffer(ScriptRules& rules, ScriptParser& parser);
void defineNewCrc(ScriptRules& rules, ScriptParser& parser);
void defineNewHash(ScriptRules& rules, ScriptParser& parser);
void defineWriteFile(ScriptRules& rules, ScriptParser& parser);
void definePrints(ScriptRules& rules, ScriptParser& parser);
void defineCallApp(ScriptRules& rules, ScriptParser& parser);

template <class ScannerT>
typename Spirit::parser_result<ScriptParser, ScannerT>::type ScriptParser::parse(
    const ScannerT& scan) const {
    return rules->script.parse(scan);
}

/// One or more characters up to, and without, the next of the characters `stops`; no match when
/// there is none.
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

/// One keyword of a table, tried in the table's order; the row is its attribute.
class KeywordOf : public Spirit::parser<KeywordOf> {
public:
    using Row = const WrapperLib::TypeKeyword*;

    template <class ScannerT>
    struct result {
        using type = typename Spirit::match_result<ScannerT, Row>::type;
    };

    explicit KeywordOf(std::span<const WrapperLib::TypeKeyword> rows) : rows_(rows) {}

    template <class ScannerT>
    typename Spirit::parser_result<KeywordOf, ScannerT>::type parse(const ScannerT& scan) const {
        const Position first = scan.first;
        const std::string_view rest(first, static_cast<std::size_t>(scan.last - first));
        for (const WrapperLib::TypeKeyword& row : rows_) {
            const std::string_view keyword = row.keyword;
            if (!rest.starts_with(keyword)) continue;
            scan.first = first + keyword.size();
            return scan.create_match(keyword.size(), Row{&row}, first, scan.first);
        }
        return scan.no_match();
    }

private:
    std::span<const WrapperLib::TypeKeyword> rows_;
};

/// The actions of one statement, bound to the parser. The trace text of an action is its first
/// argument and stands nowhere else.
template <class Command>
class StatementActions {
public:
    explicit StatementActions(ScriptParser& parser) : parser_(&parser) {}

    auto begin(const char* traceText) const {
        return boost::bind(&ScriptParser::beginStatement<Command>, parser_, traceText);
    }

    auto end() const {
        return boost::bind(&ScriptParser::endStatement, parser_, boost::placeholders::_1,
                           boost::placeholders::_2);
    }

    auto text(const char* traceText, void (Command::*setter)(std::string)) const {
        return boost::bind(&ScriptParser::takeText<Command>, parser_, traceText, setter,
                           boost::placeholders::_1, boost::placeholders::_2);
    }

    template <class Value>
    auto constant(const char* traceText, void (Command::*setter)(Value), Value value) const {
        return boost::bind(&ScriptParser::takeConstant<Command, Value>, parser_, traceText, setter,
                           value);
    }

    auto number(const char* traceText, void (Command::*setter)(std::uint32_t)) const {
        return boost::bind(&ScriptParser::takeNumber<Command>, parser_, traceText, setter);
    }

    auto values(const char* traceText, void (Command::*setter)(std::vector<std::uint32_t>)) const {
        return boost::bind(&ScriptParser::takeValues<Command>, parser_, traceText, setter);
    }

    auto area(const char* traceText, void (Command::*setter)(const WrapperLib::Area&)) const {
        return boost::bind(&ScriptParser::takeArea<Command>, parser_, traceText, setter);
    }

    auto type() const {
        return boost::bind(&ScriptParser::takeType<Command>, parser_, boost::placeholders::_1);
    }

    template <class Work>
    auto with(const char* traceText, Work work) const {
        return boost::bind(&ScriptParser::takeWith<Command, Work>, parser_, traceText, work,
                           boost::placeholders::_1, boost::placeholders::_2);
    }

private:
    ScriptParser* parser_;
};

/// -useAreas = { { start, length } ... }
template <class Command>
auto areasOption(const ScriptRules& rules, const StatementActions<Command>& on) {
    return Spirit::str_p("-useAreas") >> rules.equals >> rules.openBrace >>
           *(rules.area[on.area("AddArea -> ", &Command::addArea)] >> rules.separator) >>
           rules.closeBrace >> rules.ws;
}

/// -setByteOrder = LittleEndian | BigEndian
template <class Command>
auto byteOrderOption(const ScriptRules& rules, const StatementActions<Command>& on) {
    using Buffer::ByteOrder;
    return Spirit::str_p("-setByteOrder") >> rules.equals >>
           (Spirit::str_p("LittleEndian")[on.constant(
                "SetByteOrder_LittleEndian -> ", &Command::setByteOrder, ByteOrder::LittleEndian)] |
            Spirit::str_p("BigEndian")[on.constant(
                "SetByteOrder_BigEndian -> ", &Command::setByteOrder, ByteOrder::BigEndian)]) >>
           rules.ws;
}

/// [-resolveSymbolsAsHexValue = { name ... }] ...
template <class Command>
auto symbolsOption(const ScriptRules& rules, const StatementActions<Command>& on) {
    return rules.ws >> *(Spirit::str_p("-resolveSymbolsAsHexValue") >> rules.equals >> rules.ws >>
                         rules.openBrace >>
                         *(rules.name[on.text("AddResolveSymbolName -> ", &Command::addSymbol)] >>
                           rules.separator) >>
                         rules.closeBrace) >>
           rules.ws;
}

/// FROM_BUFFERS { name ... } | FROM_BUFFER name. The longer keyword stands first.
template <class Command>
auto buffersSource(const ScriptRules& rules, const StatementActions<Command>& on,
                   const char* traceText, void (Command::*setter)(std::string)) {
    return (Spirit::str_p("FROM_BUFFERS") >> rules.ws >> rules.openBrace >>
            *(rules.name[on.text(traceText, setter)] >> rules.separator) >> rules.closeBrace) |
           (Spirit::str_p("FROM_BUFFER") >> rules.ws >> rules.name[on.text(traceText, setter)]);
}

}  // namespace Parser
