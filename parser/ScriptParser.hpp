#pragma once

#include <boost/noncopyable.hpp>
#include <boost/spirit/include/classic_grammar.hpp>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "parser/commands/CmdApi.hpp"
#include "parser/commands/CmdNewCrc.hpp"
#include "parser/commands/CmdPrintText.hpp"

namespace Parser {

/// Position in the text of a script while the grammar reads it.
using Position = const char*;

struct ScriptRules;

/// Runs one script: prepares its text, parses all of it into command objects and executes them.
///
/// The class is its own grammar. A syntax error is reported with its line, and then no statement
/// is executed. One object serves one run.
class ScriptParser : public boost::spirit::classic::grammar<ScriptParser>,
                     private boost::noncopyable {
public:
    /// What the grammar says of a text.
    struct ParseResult {
        Position stop;       ///< where the parse ended
        bool hit;            ///< the start rule matched
        bool full;           ///< it matched the whole text
        std::size_t length;  ///< characters matched
    };

    /// A parser for `calculate`, with no variables and no script.
    ScriptParser();

    /// @param path       the script file
    /// @param variables  text replacements that win over those of the script
    ScriptParser(std::string path, std::map<std::string, std::string> variables);
    virtual ~ScriptParser();

    /// Reads, parses and executes the script; called once.
    ///
    /// True when the script was read and parsed in full, whatever its statements then reported.
    /// A file that cannot be opened is named on standard error; everything else, the time at the
    /// end too, goes to standard output.
    bool run();

    /// Puts the value of the one bracket expression that `text` may hold into the text, as " 0x"
    /// and eight digits, in place of the brackets and the character in front of them. Any other
    /// number of brackets, or one without a value, leaves the text as it is.
    std::string calculate(const std::string& text);

    /// `calculate` on a parser made for this one text.
    static std::string calculated(const std::string& text);

    /// Parses `text` as a script: queues its statements, executes nothing.
    ParseResult parseScript(std::string_view text);

    /// The statements that were parsed, in script order.
    std::size_t statementCount() const { return commands.size(); }

    // What follows belongs to the grammar: its match, the parser actions, and what its rules ask.

    /// Matches the start rule, once `parseScript` has built it, for Spirit; in ScriptGrammar.hpp.
    /// It stands in front of the base's own `parse`, which would keep the rules in a record of all
    /// grammars: should memory run out while that is made, the base frees a piece of it twice.
    template <class ScannerT>
    typename boost::spirit::classic::parser_result<ScriptParser, ScannerT>::type parse(
        const ScannerT& scan) const;

    /// [Begin]: a new statement of kind `Command` starts from a clean parser state.
    template <class Command>
    void beginStatement(const char* traceText) {
        resetState();
        lastTokens += traceText;
        if constexpr (std::is_constructible_v<Command, WrapperLib::TextCalculator>)
            currentCmd = std::make_unique<Command>(&ScriptParser::calculated);
        else
            currentCmd = std::make_unique<Command>();
    }

    /// [End]: the statement, matched from `first` to `last`, is finished and queued.
    void endStatement(Position first, Position last);

    /// An action that hands the matched text to a setter.
    template <class Command>
    void takeText(const char* traceText, void (Command::*setter)(std::string), Position first,
                  Position last) {
        lastTokens += traceText;
        (current<Command>().*setter)(std::string(first, last));
    }

    /// An action that hands a fixed value to a setter.
    template <class Command, class Value>
    void takeConstant(const char* traceText, void (Command::*setter)(Value), Value value) {
        lastTokens += traceText;
        (current<Command>().*setter)(value);
    }

    /// An action that hands the last number to a setter.
    template <class Command>
    void takeNumber(const char* traceText, void (Command::*setter)(std::uint32_t)) {
        lastTokens += traceText;
        (current<Command>().*setter)(currentValue);
    }

    /// An action that hands the last value list to a setter.
    template <class Command>
    void takeValues(const char* traceText, void (Command::*setter)(std::vector<std::uint32_t>)) {
        lastTokens += traceText;
        (current<Command>().*setter)(std::move(valueCollection));
    }

    /// An action that hands the last area to a setter.
    template <class Command>
    void takeArea(const char* traceText, void (Command::*setter)(const WrapperLib::Area&)) {
        lastTokens += traceText;
        (current<Command>().*setter)({areaStart, areaLength});
    }

    /// An action on a keyword of `-setType`.
    template <class Command>
    void takeType(const WrapperLib::TypeKeyword* type) {
        lastTokens += type->trace;
        current<Command>().setType(type->code);
    }

    /// An action with a work of its own: `work` gets the command and the matched text.
    template <class Command, class Work>
    void takeWith(const char* traceText, Work work, Position first, Position last) {
        lastTokens += traceText;
        work(current<Command>(), std::string(first, last));
    }

    void setText(Position first, Position last) { currentText.assign(first, last); }
    const std::string& text() const { return currentText; }
    std::uint32_t number() const { return currentValue; }
    void trace(const char* traceText) { lastTokens += traceText; }

    void pushValue(std::uint32_t value) { valueStack.push_front(value); }
    void addValues();
    void subtractValues();
    void multiplyValues();
    void divideValues();
    void moduloValues();
    void takeValue();
    void collectValue() { valueCollection.push_back(currentValue); }
    void setAreaStart() { areaStart = currentValue; }
    void setAreaLength() { areaLength = currentValue; }

    /// A `value` begins: nothing is wrong with its expression yet.
    bool beginExpression();

    /// Enters one level of nested or chained expressions; false when there are too many, or too
    /// many tries, which no enclosing `value` survives.
    bool enterExpression();
    void leaveExpression() { --expressionDepth; }

    /// An operator has both operands. If not, the enclosing `value` fails.
    bool hasOperands();

    /// The expression of a `value` went through without a fault.
    bool isExpressionGood() const { return !isExpressionBad; }

    /// Searches of the grammar for a closing delimiter that came to nothing. A later one need not
    /// look again, or a text of many unclosed delimiters would take quadratic time.
    struct FruitlessSearches {
        Position brace = nullptr;
        Position quote = nullptr;
        Position bracket = nullptr;
    };
    FruitlessSearches fruitlessSearches;

private:
    template <class Command>
    Command& current() {
        return static_cast<Command&>(*currentCmd);
    }

    void resetState();
    void beginText(std::size_t size);
    bool prepareAndRun(std::string text);
    void reportSyntaxError(std::string_view matched) const;

    /// Built at the first parse; bound to this object.
    std::unique_ptr<const ScriptRules> rules;
    WrapperLib::CmdContext context;
    /// The statement being parsed; moves to `commands` when its statement has matched.
    std::unique_ptr<WrapperLib::CmdApi> currentCmd;
    /// Finished statements in script order, executed after the whole script has parsed.
    std::deque<std::unique_ptr<WrapperLib::CmdApi>> commands;
    std::string currentText;
    std::uint32_t currentValue = 0;
    /// Operands of the expression being read; the front is the top.
    std::deque<std::uint32_t> valueStack;
    std::uint32_t areaStart = 0;
    std::uint32_t areaLength = 0;
    std::vector<std::uint32_t> valueCollection;
    std::string lastTokens;
    std::string lastCommand;
    std::map<std::string, std::string> initialVariables;
    std::string scriptPath;
    unsigned expressionDepth = 0;
    std::size_t triesLeft = 0;
    bool isExpressionBad = false;
};

}  // namespace Parser
