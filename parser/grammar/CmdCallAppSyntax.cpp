#include <memory>

#include "parser/commands/CmdCallApp.hpp"
#include "parser/grammar/Statements.hpp"

namespace Parser {

using WrapperLib::CmdCallApp;

namespace {

/// CALL_APP path WITH_ARGUMENTS text [-resolveSymbolsAsHexValue = { name ... }]
struct CallAppRules final : StatementRules {
    CallAppRules(CommonRules& rules, ParserState& state) {
        const StatementActions<CmdCallApp> on(state);
        command = (rules.keyword("CALL_APP")[on.begin("CmdCallApp: Begin -> ")] >> rules.ws >>
                   rules.textArg[on.text("SetAppLocation -> ", Role::Program,
                                         &CmdCallApp::setAppLocation)] >>
                   callAppArguments >> callAppOptions)[on.end()] >>
                  rules.ws;
        callAppArguments =
            rules.ws >> rules.keyword("WITH_ARGUMENTS") >> rules.ws >>
            rules.textArg[on.text("SetArguments -> ", Role::Text, &CmdCallApp::setArguments)] >>
            rules.ws;
        callAppOptions = symbolsOption(rules, on);
    }

    Rule callAppArguments, callAppOptions;
};

}  // namespace

std::unique_ptr<const StatementRules> callAppCmd(CommonRules& rules, ParserState& state) {
    return std::make_unique<CallAppRules>(rules, state);
}

}  // namespace Parser
