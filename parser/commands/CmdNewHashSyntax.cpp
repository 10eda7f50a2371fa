#include "parser/ScriptGrammar.hpp"
#include "parser/commands/CmdNewHash.hpp"

namespace Parser {

using Spirit::str_p;
using WrapperLib::CmdNewHash;

/// NEW_HASH name source [option ...]
void defineNewHash(ScriptRules& rules, ScriptParser& parser) {
    const StatementActions<CmdNewHash> on(parser);
    rules.newHashCmd = (str_p("NEW_HASH")[on.begin("CmdNewHash: Begin -> ")] >> rules.ws >>
                        rules.name[on.text("SetHashName -> ", &CmdNewHash::setHashName)] >>
                        rules.hashSource >> rules.hashOptions)[on.end()] >>
                       rules.ws;
    rules.hashSource = rules.ws >>
                       buffersSource(rules, on, "AddFromBuffer -> ", &CmdNewHash::addFromBuffer) >>
                       rules.ws;
    rules.hashOptions = *(rules.hashAreasOption | rules.hashTypeOption);
    rules.hashAreasOption = areasOption(rules, on);
    rules.hashTypeOption =
        str_p("-setType") >> rules.equals >> KeywordOf(CmdNewHash::types())[on.type()] >> rules.ws;
}

}  // namespace Parser
