#include "parser/ScriptGrammar.hpp"
#include "parser/commands/CmdNewBuffer.hpp"

namespace Parser {

using Spirit::str_p;
using WrapperLib::CmdNewBuffer;

/// NEW_BUFFER name source [option ...]
void defineNewBuffer(ScriptRules& rules, ScriptParser& parser) {
    const StatementActions<CmdNewBuffer> on(parser);
    rules.newBufferCmd = (str_p("NEW_BUFFER")[on.begin("CmdNewBuffer: Begin -> ")] >> rules.ws >>
                          rules.name[on.text("SetName -> ", &CmdNewBuffer::setBufferName)] >>
                          rules.newSource >> rules.newOptions)[on.end()] >>
                         rules.ws;
    rules.newSource =
        rules.ws >>
        ((str_p("FROM_FILE_BINARY") >> rules.ws >>
          rules.textArg[on.text("SetRawFileAsSource -> ", &CmdNewBuffer::setRawFile)]) |
         (str_p("FROM_FILE") >> rules.ws >>
          rules.textArg[on.text("SetFileAsSource -> ", &CmdNewBuffer::setFile)]) |
         str_p("EMPTY") |
         (str_p("FROM_VALUES") >> rules.ws >>
          rules.valueList[on.values("SetHexList -> ", &CmdNewBuffer::setValues)]) |
         buffersSource(rules, on, "AddBufferAsSource -> ", &CmdNewBuffer::addSourceBuffer)) >>
        rules.ws;
    rules.newOptions = *(rules.newStartAddressOption | rules.newByteOrderOption |
                         rules.newAreasOption | rules.bufferRangeOption);
    rules.newStartAddressOption = rules.startAddressSetting[on.number(
                                      "SetStartAddress -> ", &CmdNewBuffer::setNewStartAddress)] >>
                                  rules.ws;
    rules.startAddressSetting = str_p("-changeStartAddressTo") >> rules.equals >> rules.value;
    rules.newByteOrderOption = byteOrderOption(rules, on);
    rules.newAreasOption = areasOption(rules, on);
    rules.bufferRangeOption =
        str_p("-useBufferRange") >> rules.equals >>
        rules.area[on.area("SetBufferRange -> ", &CmdNewBuffer::setBufferRange)] >> rules.ws;
}

}  // namespace Parser
