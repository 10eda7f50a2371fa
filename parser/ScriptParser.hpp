#pragma once

#include <boost/noncopyable.hpp>
#include <boost/spirit/include/classic_grammar.hpp>
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "parser/commands/CmdContext.hpp"
#include "parser/grammar/Calculation.hpp"
#include "parser/grammar/ParserState.hpp"

namespace Parser {

struct ScriptRules;

/// Runs one script: prepares its text, parses all of it into command objects and executes them.
///
/// The class is its own grammar. A syntax error is reported with its line, and then no statement is
/// executed. One object serves one run. Everything to report goes to the listener in force
/// (facts/Listener.hpp).
class ScriptParser : public boost::spirit::classic::grammar<ScriptParser>,
                     private boost::noncopyable {
public:
    /// The result of a parse.
    struct ParseResult {
        Position stop;       ///< where the parse ended
        bool hit;            ///< the start rule matched
        bool full;           ///< it matched the whole text
        std::size_t length;  ///< characters matched
    };

    /// A parser for `parseScript` and `calculate`, with no variables and no script.
    ScriptParser();

    /// @param path       the script file
    /// @param variables  text replacements, which take precedence over those of the script
    ScriptParser(std::string path, std::map<std::string, std::string> variables);
    virtual ~ScriptParser();

    /// Reads, parses and executes the script; called once.
    ///
    /// True if the script was read and parsed in full, whatever its statements then reported.
    bool run();

    /// The text with the value of its bracket expression; see `calculated`.
    static std::string calculate(const std::string& text) { return calculated(text); }

    /// Parses `text` as a script: queues its statements, executes nothing.
    ParseResult parseScript(std::string_view text);

    /// The statements that were parsed.
    std::size_t statementCount() const { return state_.statement.commands().size(); }

    /// Matches the start rule for Spirit, once `parseScript` has built it.
    ///
    /// It hides the base's own `parse`, which would keep the rules in a global record of grammars:
    /// should memory run out while that is made, the base frees a piece of it twice.
    template <class ScannerT>
    typename boost::spirit::classic::parser_result<ScriptParser, ScannerT>::type parse(
        const ScannerT& scan) const;

private:
    bool prepareAndRun(std::string text);

    /// Built at the first parse; bound to `state`.
    std::unique_ptr<const ScriptRules> rules_;
    WrapperLib::CmdContext context_;
    ParserState state_;
    std::map<std::string, std::string> initialVariables_;
    std::string scriptPath_;
};

}  // namespace Parser
