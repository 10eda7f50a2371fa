#include "parser/ScriptGrammar.hpp"
#include "parser/commands/CmdPrintBuffer.hpp"
#include "parser/commands/CmdPrintCrc.hpp"
#include "parser/commands/CmdPrintHash.hpp"

namespace Parser {

using Spirit::str_p;
using WrapperLib::CmdPrintBuffer;
using WrapperLib::CmdPrintCrc;
using WrapperLib::CmdPrintHash;

namespace {

/// PRINT_BUFFER name [-useAreas = { area ... }]
void definePrintBuffer(ScriptRules& rules, ScriptParser& parser) {
    const StatementActions<CmdPrintBuffer> on(parser);
    rules.printBufferCmd =
        (str_p("PRINT_BUFFER")[on.begin("CmdPrintBuffer: Begin -> ")] >> rules.ws >>
         rules.name[on.text("SetName -> ", &CmdPrintBuffer::setBufferName)] >> rules.ws >>
         rules.printBufferOptions)[on.end()] >>
        rules.ws;
    rules.printBufferOptions = rules.ws >> *areasOption(rules, on) >> rules.ws;
}

/// PRINT_CRC name
void definePrintCrc(ScriptRules& rules, ScriptParser& parser) {
    const StatementActions<CmdPrintCrc> on(parser);
    rules.printCrcCmd =
        (str_p("PRINT_CRC")[on.begin("CmdPrintCrc_Begin: Begin -> ")] >> rules.ws >>
         rules.name[on.text("SetName -> ", &CmdPrintCrc::setCrcName)] >> rules.ws)[on.end()] >>
        rules.ws;
}

/// PRINT_HASH name
void definePrintHash(ScriptRules& rules, ScriptParser& parser) {
    const StatementActions<CmdPrintHash> on(parser);
    rules.printHashCmd =
        (str_p("PRINT_HASH")[on.begin("CmdPrintHash_Begin: Begin -> ")] >> rules.ws >>
         rules.name[on.text("SetName -> ", &CmdPrintHash::setHashName)] >> rules.ws)[on.end()] >>
        rules.ws;
}

}  // namespace

void definePrints(ScriptRules& rules, ScriptParser& parser) {
    definePrintBuffer(rules, parser);
    definePrintCrc(rules, parser);
    definePrintHash(rules, parser);
}

}  // namespace Parser
