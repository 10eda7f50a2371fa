#include "parser/ScriptGrammar.hpp"
#include "parser/commands/CmdCallApp.hpp"

namespace Parser {

using Spirit::str_p;
using WrapperLib::CmdCallApp;

/// CALL_APP path WITH_ARGUMENTS text [-resolveSymbolsAsHexValue = { name ... }]
void defineCallApp(ScriptRules& rules, ScriptParser& parser) {
    const StatementActions<CmdCallApp> on(parser);
    rules.callAppCmd = (str_p("CALL_APP")[on.begin("CmdCallApp: Begin -> ")] >> rules.ws >>
                        rules.textArg[on.text("SetAppLocation -> ", &CmdCallApp::setAppLocation)] >>
                        rules.callAppArguments >> rules.callAppOptions)[on.end()] >>
                       rules.ws;
    rules.callAppArguments =
        rules.ws >> str_p("WITH_ARGUMENTS") >> rules.ws >>
        rules.textArg[on.text("SetArguments -> ", &CmdCallApp::setArguments)] >> rules.ws;
    rules.callAppOptions = symbolsOption(rules, on);
}

}  // namespace Parser
