#include <memory>

#include "parser/commands/CmdFillBuffer.hpp"
#include "parser/grammar/Statements.hpp"

namespace Parser {

using Spirit::anychar_p;
using WrapperLib::CmdFillBuffer;

namespace {

/// FILL_BUFFER name source [option ...]
struct FillBufferRules final : StatementRules {
    FillBufferRules(CommonRules& rules, ParserState& state) {
        const StatementActions<CmdFillBuffer> on(state);
        command =
            (rules.keyword("FILL_BUFFER")[on.begin("CmdFillBuffer: Begin -> ")] >> rules.ws >>
             rules
                 .name[on.text("SetName -> ", Role::ChangesImage, &CmdFillBuffer::setBufferName)] >>
             fillSource >> fillOptions)[on.end()] >>
            rules.ws;
        fillSource =
            rules.ws >>
            ((rules.keyword("WITH_FILLER") >> rules.ws >>
              rules.valueList[on.values("SetFillPattern -> ", Role::Filler,
                                        &CmdFillBuffer::setFillPattern)]) |
             (rules.keyword("WITH_CRC") >> rules.ws >>
              rules.name[on.text("SetFillCrc -> ", Role::UsesCrc, &CmdFillBuffer::setFillCrc)]) |
             (rules.keyword("WITH_HASH") >> rules.ws >>
              rules.name[on.text("SetFillHash -> ", Role::UsesHash, &CmdFillBuffer::setFillHash)]) |
             (rules.keyword("WITH_SIGNATURE") >> rules.ws >>
              rules.name[on.text("SetFillSignature -> ", Role::UsesSignature,
                                 &CmdFillBuffer::setFillSignature)]) |
             (rules.keyword("WITH_VALUES") >> rules.ws >>
              rules.valueList[on.values("SetFillValues -> ", Role::Bytes,
                                        &CmdFillBuffer::setFillValues)]) |
             (rules.keyword("WITH_STRING") >> rules.ws >> rules.quote >>
              // The action runs on the characters even if the closing quote is missing.
              (+(anychar_p - rules.quote))[on.text("SetFillString -> ", Role::String,
                                                   &CmdFillBuffer::setFillString)] >>
              rules.quote)) >>
            rules.ws;
        fillOptions = *(fillByteOrderOption | fillAreasOption | fillSizeOption);
        fillSizeOption = valueSizeOption(rules, on);
        fillByteOrderOption = byteOrderOption(rules, on);
        fillAreasOption = areasOption(rules, on);
    }

    Rule fillSource, fillOptions, fillByteOrderOption, fillAreasOption, fillSizeOption;
};

}  // namespace

std::unique_ptr<const StatementRules> fillBufferCmd(CommonRules& rules, ParserState& state) {
    return std::make_unique<FillBufferRules>(rules, state);
}

}  // namespace Parser
