#include <memory>
#include <string>

#include "parser/commands/CmdPrintBuffer.hpp"
#include "parser/commands/CmdPrintCrc.hpp"
#include "parser/commands/CmdPrintHash.hpp"
#include "parser/grammar/Statements.hpp"

namespace Parser {

using WrapperLib::CmdPrintBuffer;
using WrapperLib::CmdPrintCrc;
using WrapperLib::CmdPrintHash;

namespace {

/// PRINT_BUFFER name [-useAreas = { area ... }]
struct PrintBufferRules final : StatementRules {
    PrintBufferRules(CommonRules& rules, ParserState& state) {
        const StatementActions<CmdPrintBuffer> on(state);
        command =
            (rules.keyword("PRINT_BUFFER")[on.begin("CmdPrintBuffer: Begin -> ")] >> rules.ws >>
             rules.name[on.text("SetName -> ", Role::UsesImage, &CmdPrintBuffer::setBufferName)] >>
             rules.ws >> printBufferOptions)[on.end()] >>
            rules.ws;
        printBufferOptions = rules.ws >> *areasOption(rules, on) >> rules.ws;
    }

    Rule printBufferOptions;
};

/// PRINT_CRC name, and PRINT_HASH
template <class Command>
struct PrintValueRules final : StatementRules {
    PrintValueRules(CommonRules& rules, ParserState& state, const char* keyword,
                    const char* beginTrace, Role role, void (Command::*setName)(std::string)) {
        const StatementActions<Command> on(state);
        command = (rules.keyword(keyword)[on.begin(beginTrace)] >> rules.ws >>
                   rules.name[on.text("SetName -> ", role, setName)] >> rules.ws)[on.end()] >>
                  rules.ws;
    }
};

}  // namespace

std::unique_ptr<const StatementRules> printBufferCmd(CommonRules& rules, ParserState& state) {
    return std::make_unique<PrintBufferRules>(rules, state);
}

std::unique_ptr<const StatementRules> printCrcCmd(CommonRules& rules, ParserState& state) {
    return std::make_unique<PrintValueRules<CmdPrintCrc>>(rules, state, "PRINT_CRC",
                                                          "CmdPrintCrc_Begin: Begin -> ",
                                                          Role::UsesCrc, &CmdPrintCrc::setCrcName);
}

std::unique_ptr<const StatementRules> printHashCmd(CommonRules& rules, ParserState& state) {
    return std::make_unique<PrintValueRules<CmdPrintHash>>(
        rules, state, "PRINT_HASH", "CmdPrintHash_Begin: Begin -> ", Role::UsesHash,
        &CmdPrintHash::setHashName);
}

}  // namespace Parser
