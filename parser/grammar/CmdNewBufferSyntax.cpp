#include <memory>
#include <string>
#include <string_view>

#include "parser/commands/CmdNewBuffer.hpp"
#include "parser/grammar/Statements.hpp"

namespace Parser {

using Buffer::OverlapRule;
using WrapperLib::CmdNewBuffer;
using WrapperLib::FileKind;

namespace {

/// NEW_BUFFER name source [option ...]
struct NewBufferRules final : StatementRules {
    NewBufferRules(CommonRules& rules, ParserState& state) {
        const StatementActions<CmdNewBuffer> on(state);
        command =
            (rules.keyword("NEW_BUFFER")[on.begin("CmdNewBuffer: Begin -> ")] >> rules.ws >>
             rules.name[on.text("SetName -> ", Role::MakesImage, &CmdNewBuffer::setBufferName)] >>
             newSource >> newOptions)[on.end()] >>
            rules.ws;
        const auto fileOf = [&](const char* trace, FileKind kind) {
            const auto set = [kind](CmdNewBuffer& image, std::string_view text) {
                image.setFileOf(std::string(text), kind);
            };
            return on.with(trace, Role::InputFile, set, static_cast<std::uint32_t>(kind));
        };
        newSource =
            rules.ws >>
            ((rules.keyword("FROM_FILE_BINARY") >> rules.ws >>
              rules.textArg[on.text("SetRawFileAsSource -> ", Role::InputFile,
                                    &CmdNewBuffer::setRawFile,
                                    static_cast<std::uint32_t>(FileKind::Raw))]) |
             (rules.keyword("FROM_FILE") >> rules.ws >>
              rules.textArg[on.text("SetFileAsSource -> ", Role::InputFile,
                                    &CmdNewBuffer::setFile)]) |
             (rules.keyword("FROM_ELF") >> rules.ws >>
              rules.textArg[fileOf("SetElfFileAsSource -> ", FileKind::Elf)]) |
             (rules.keyword("FROM_UF2") >> rules.ws >>
              rules.textArg[fileOf("SetUf2FileAsSource -> ", FileKind::Uf2)]) |
             (rules.keyword("FROM_TI_TXT") >> rules.ws >>
              rules.textArg[fileOf("SetTiTxtFileAsSource -> ", FileKind::TiTxt)]) |
             rules.keyword("EMPTY") |
             (rules.keyword("FROM_VALUES") >> rules.ws >>
              rules.valueList[on.values("SetHexList -> ", Role::Bytes, &CmdNewBuffer::setValues)]) |
             buffersSource(rules, on, "AddBufferAsSource -> ", &CmdNewBuffer::addSourceBuffer)) >>
            rules.ws;
        newOptions = *(newStartAddressOption | newByteOrderOption | newAreasOption |
                       bufferRangeOption | overlapOption);
        newStartAddressOption = startAddressSetting[on.number("SetStartAddress -> ", Role::Address,
                                                              &CmdNewBuffer::setNewStartAddress)] >>
                                rules.ws;
        startAddressSetting =
            rules.keyword("-changeStartAddressTo") >> rules.equals >> rules.notedValue;
        newByteOrderOption = byteOrderOption(rules, on);
        newAreasOption = areasOption(rules, on);
        bufferRangeOption =
            rules.keyword("-useBufferRange") >> rules.equals >>
            rules.area[on.area("SetBufferRange -> ", Role::Range, &CmdNewBuffer::setBufferRange)] >>
            rules.ws;
        const auto rule = [&](const char* word, const char* trace, OverlapRule value) {
            return rules.keyword(
                word)[on.constant(trace, Role::Overlap, &CmdNewBuffer::setOverlapRule, value)];
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
