#include "parser/ScriptGrammar.hpp"
#include "parser/commands/CmdNewCrc.hpp"

namespace Parser {

using Spirit::str_p;
using WrapperLib::CmdNewCrc;

/// NEW_CRC name source [option ...]
void defineNewCrc(ScriptRules& rules, ScriptParser& parser) {
    const StatementActions<CmdNewCrc> on(parser);
    rules.newCrcCmd = (str_p("NEW_CRC")[on.begin("CmdNewCrc: Begin -> ")] >> rules.ws >>
                       rules.name[on.text("SetCrcName -> ", &CmdNewCrc::setCrcName)] >>
                       rules.crcSource >> rules.crcOptions)[on.end()] >>
                      rules.ws;
    rules.crcSource = rules.ws >>
                      buffersSource(rules, on, "AddFromBuffer -> ", &CmdNewCrc::addFromBuffer) >>
                      rules.ws;
    rules.crcOptions = *(rules.crcAreasOption | rules.crcTypeOption);
    rules.crcAreasOption = areasOption(rules, on);
    rules.crcTypeOption =
        str_p("-setType") >> rules.equals >> KeywordOf(CmdNewCrc::types())[on.type()] >> rules.ws;
}

}  // namespace Parser
