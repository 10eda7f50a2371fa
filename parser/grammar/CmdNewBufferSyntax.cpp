#include <memory>

#include "parser/commands/CmdNewBuffer.hpp"
#include "parser/grammar/Statements.hpp"

namespace Parser {

using Buffer::OverlapRule;
using WrapperLib::CmdNewBuffer;

namespace {

/// NEW_BUFFER name source [option ...]
struct NewBufferRules final : StatementRules {
    NewBufferRules(CommonRules& rules, ParserState& state) {
        const StatementActions<CmdNewBuffer> on(state);
        command = (rules.keyword("NEW_BUFFER")[on.begin("CmdNewBuffer: Begin -> ")] >> rules.ws >>
                   rules.name[on.text("SetName -> ", &CmdNewBuffer::setBufferName)] >> newSource >>
                   newOptions)[on.end()] >>
                  rules.ws;
        newSource =
            rules.ws >>
            ((rules.keyword("FROM_FILE_BINARY") >> rules.ws >>
              rules.textArg[on.text("SetRawFileAsSource -> ", &CmdNewBuffer::setRawFile)]) |
             (rules.keyword("FROM_FILE") >> rules.ws >>
              rules.textArg[on.text("SetFileAsSource -> ", &CmdNewBuffer::setFile)]) |
             rules.keyword("EMPTY") |
             (rules.keyword("FROM_VALUES") >> rules.ws >>
              rules.valueList[on.values("SetHexList -> ", &CmdNewBuffer::setValues)]) |
             buffersSource(rules, on, "AddBufferAsSource -> ", &CmdNewBuffer::addSourceBuffer)) >>
            rules.ws;
        newOptions = *(newStartAddressOption | newByteOrderOption | newAreasOption |
                       bufferRangeOption | overlapOption);
        newStartAddressOption = startAddressSetting[on.number("SetStartAddress -> ",
                                                              &CmdNewBuffer::setNewStartAddress)] >>
                                rules.ws;
        startAddressSetting = rules.keyword("-changeStartAddressTo") >> rules.equals >> rules.value;
        newByteOrderOption = byteOrderOption(rules, on);
        newAreasOption = areasOption(rules, on);
        bufferRangeOption =
            rules.keyword("-useBufferRange") >> rules.equals >>
            rules.area[on.area("SetBufferRange -> ", &CmdNewBuffer::setBufferRange)] >> rules.ws;
        const auto rule = [&](const char* word, const char* trace, OverlapRule value) {
            return rules.keyword(word)[on.constant(trace, &CmdNewBuffer::setOverlapRule, value)];
        };
        overlapOption = rules.keyword("-onOverlap") >> rules.equals >>
                        (rule("Last", "SetOnOverlap_Last -> ", OverlapRule::Last) |
                         rule("First", "SetOnOverlap_First -> ", OverlapRule::First) |
                         rule("Same", "SetOnOverlap_Same -> ", OverlapRule::Same) |
                         rule("Error", "SetOnOverlap_Error -> ", OverlapRule::Error)) >>
                        rules.ws;
    }

    Rule newSource, newOptions, newStartAddressOption, startAddressSetting, newByteOrderOption,
        newAreasOption, bufferRangeOption, overlapOption;
};

}  // namespace

std::unique_ptr<const StatementRules> newBufferCmd(CommonRules& rules, ParserState& state) {
    return std::make_unique<NewBufferRules>(rules, state);
}

}  // namespace Parser
