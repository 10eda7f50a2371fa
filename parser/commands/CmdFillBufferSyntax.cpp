#include "parser/ScriptGrammar.hpp"
#include "parser/commands/CmdFillBuffer.hpp"

namespace Parser {

using Spirit::anychar_p;
using Spirit::str_p;
using WrapperLib::CmdFillBuffer;

/// FILL_BUFFER name source [option ...]
void defineFillBuffer(ScriptRules& rules, ScriptParser& parser) {
    const StatementActions<CmdFillBuffer> on(parser);
    rules.fillBufferCmd = (str_p("FILL_BUFFER")[on.begin("CmdFillBuffer: Begin -> ")] >> rules.ws >>
                           rules.name[on.text("SetName -> ", &CmdFillBuffer::setBufferName)] >>
                           rules.fillSource >> rules.fillOptions)[on.end()] >>
                          rules.ws;
    rules.fillSource =
        rules.ws >>
        ((str_p("WITH_FILLER") >> rules.ws >>
          rules.valueList[on.values("SetFillPattern -> ", &CmdFillBuffer::setFillPattern)]) |
         (str_p("WITH_CRC") >> rules.ws >>
          rules.name[on.text("SetFillCrc -> ", &CmdFillBuffer::setFillCrc)]) |
         (str_p("WITH_HASH") >> rules.ws >>
          rules.name[on.text("SetFillHash -> ", &CmdFillBuffer::setFillHash)]) |
         (str_p("WITH_VALUES") >> rules.ws >>
          rules.valueList[on.values("SetFillValues -> ", &CmdFillBuffer::setFillValues)]) |
         (str_p("WITH_STRING") >> rules.ws >> rules.quote >>
          // The action runs on what stands behind the quote, closed or not.
          (+(anychar_p -
             rules.quote))[on.text("SetFillString -> ", &CmdFillBuffer::setFillString)] >>
          rules.quote)) >>
        rules.ws;
    rules.fillOptions = *(rules.fillByteOrderOption | rules.fillAreasOption);
    rules.fillByteOrderOption = byteOrderOption(rules, on);
    rules.fillAreasOption = areasOption(rules, on);
}

}  // namespace Parser
