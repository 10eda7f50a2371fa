#include <memory>

#include "parser/commands/CmdVerifyBuffer.hpp"
#include "parser/grammar/Statements.hpp"

namespace Parser {

using Spirit::anychar_p;
using WrapperLib::CmdVerifyBuffer;

namespace {

/// VERIFY_BUFFER name source [option ...]
struct VerifyBufferRules final : StatementRules {
    VerifyBufferRules(CommonRules& rules, ParserState& state) {
        const StatementActions<CmdVerifyBuffer> on(state);
        command =
            (rules.keyword("VERIFY_BUFFER")[on.begin("CmdVerifyBuffer: Begin -> ")] >> rules.ws >>
             rules.name[on.text("SetName -> ", Role::UsesImage, &CmdVerifyBuffer::setBufferName)] >>
             verifySource >> verifyOptions)[on.end()] >>
            rules.ws;
        const auto named = [&](const char* keyword, const char* trace, Role role,
                               void (CmdVerifyBuffer::*set)(std::string)) {
            return rules.keyword(keyword) >> rules.ws >> rules.name[on.text(trace, role, set)];
        };
        verifySource =
            rules.ws >>
            (named("WITH_CRC", "SetVerifyCrc -> ", Role::UsesCrc, &CmdVerifyBuffer::setCrc) |
             named("WITH_HASH", "SetVerifyHash -> ", Role::UsesHash, &CmdVerifyBuffer::setHash) |
             named("WITH_SIGNATURE", "SetVerifySignature -> ", Role::UsesSignature,
                   &CmdVerifyBuffer::setSignature) |
             named("WITH_BUFFER", "SetVerifyBuffer -> ", Role::UsesImage,
                   &CmdVerifyBuffer::setOther) |
             (rules.keyword("WITH_VALUES") >> rules.ws >>
              rules.valueList[on.values("SetVerifyValues -> ", Role::Bytes,
                                        &CmdVerifyBuffer::setValues)]) |
             (rules.keyword("WITH_STRING") >> rules.ws >> rules.quote >>
              (+(anychar_p - rules.quote))[on.text("SetVerifyString -> ", Role::String,
                                                   &CmdVerifyBuffer::setString)] >>
              rules.quote)) >>
            rules.ws;
        verifyOptions = *(verifyByteOrderOption | verifyAreasOption | verifySizeOption);
        verifyByteOrderOption = byteOrderOption(rules, on);
        verifyAreasOption = areasOption(rules, on);
        verifySizeOption = valueSizeOption(rules, on);
    }

    Rule verifySource, verifyOptions, verifyByteOrderOption, verifyAreasOption, verifySizeOption;
};

}  // namespace

std::unique_ptr<const StatementRules> verifyBufferCmd(CommonRules& rules, ParserState& state) {
    return std::make_unique<VerifyBufferRules>(rules, state);
}

}  // namespace Parser
