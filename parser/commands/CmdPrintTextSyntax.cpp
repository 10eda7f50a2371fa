#include "parser/ScriptGrammar.hpp"
#include "parser/commands/CmdPrintText.hpp"

namespace Parser {

using Spirit::str_p;
using WrapperLib::CmdPrintText;

/// PRINT_TEXT text [-resolveSymbolsAsHexValue = { name ... }]
void definePrintText(ScriptRules& rules, ScriptParser& parser) {
    const StatementActions<CmdPrintText> on(parser);
    // The text is taken over at the end, with the word that this statement's trace has there.
    const auto takeText = [&parser](CmdPrintText& command, const std::string&) {
        command.setText(parser.text());
    };
    rules.printTextCmd =
        (str_p("PRINT_TEXT")[on.begin("CmdPrintText_Begin: Begin -> ")] >> rules.ws >>
         rules.textArg[boost::bind(&ScriptParser::setText, &parser, boost::placeholders::_1,
                                   boost::placeholders::_2)] >>
         rules.ws >> rules.printTextOptions)[on.with("SetFileAsSource -> ", takeText)][on.end()] >>
        rules.ws;
    rules.printTextOptions = symbolsOption(rules, on);
}

}  // namespace Parser
