#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "parser/commands/CmdWriteFile.hpp"
#include "parser/grammar/Statements.hpp"

namespace Parser {

using Spirit::ch_p;
using Spirit::eps_p;
using WrapperLib::CmdWriteFile;
using WrapperLib::ExportFormat;

namespace {

/// WRITE_FILE path WITH_BUFFERS { name ... } [option ...]
struct WriteFileRules final : StatementRules {
    WriteFileRules(CommonRules& rules, ParserState& state) {
        const StatementActions<CmdWriteFile> on(state);
        command = (rules.keyword("WRITE_FILE")[on.begin("CmdWriteFile: Begin -> ")] >> rules.ws >>
                   rules.textArg[on.text("SetFileName -> ", &CmdWriteFile::setFileName)] >>
                   writeBuffers >> writeOptions)[on.end()] >>
                  rules.ws;
        writeBuffers =
            rules.ws >> rules.keyword("WITH_BUFFERS") >> rules.ws >> rules.openBrace >>
            *(rules.name[on.text("AddBufferToExportList -> ", &CmdWriteFile::addBuffer)] >>
              rules.separator) >>
            rules.closeBrace >> rules.ws;
        writeOptions = *(formatOption | skipUnwrittenOption | executionAddressOption);
        skipUnwrittenOption =
            rules.keyword("-skipUnwritten")[on.with(
                "SetSkipUnwritten -> ",
                [](CmdWriteFile& write, std::string_view) { write.skipUnwritten(); })] >>
            rules.ws;
        formatOption = rules.keyword("-setFormat") >> rules.equals >>
                       FirstOf(formatRules(rules, state)) >> rules.ws;
        // A bare number is the execution address; the keyword takes a name, digits or not.
        executionAddressOption =
            ((rules.keyword("-setExecutionAddress") >> rules.equals >>
              ((ch_p('.') | eps_p) >>
               rules.name)[on.text("SetExecutionStartAddress -> ", &CmdWriteFile::setSection)]) |
             rules.value[on.number("SetExecutionStartAddress -> ",
                                   &CmdWriteFile::setExecutionStartAddress)]) >>
            rules.ws;
    }

    /// A rule for each format. The form with a number, if the format has one, comes first.
    std::vector<const Rule*> formatRules(CommonRules& rules, ParserState& state) {
        const StatementActions<CmdWriteFile> on(state);
        std::vector<const Rule*> alternatives;
        for (const ExportFormat& format : CmdWriteFile::formats()) {
            const auto set = [&state, &format](CmdWriteFile& write, bool hasNumber) {
                const std::uint32_t number = state.expression.currentValue();
                write.setFormat(format, hasNumber ? std::optional(number) : std::nullopt);
            };
            const auto bare = on.with(
                format.trace, [set](CmdWriteFile& write, std::string_view) { set(write, false); });
            const auto numbered = on.with(
                format.trace, [set](CmdWriteFile& write, std::string_view) { set(write, true); });
            Rule& rule = formats.emplace_back();
            if (format.setNumber == nullptr)
                rule = rules.keyword(format.keyword)[bare];
            else
                rule = (rules.keyword(format.keyword) >> ch_p('_') >> rules.value[numbered]) |
                       rules.keyword(format.keyword)[bare];
            alternatives.push_back(&rule);
        }
        return alternatives;
    }

    Rule writeBuffers, writeOptions, formatOption, skipUnwrittenOption, executionAddressOption;
    std::deque<Rule> formats;
};

}  // namespace

std::unique_ptr<const StatementRules> writeFileCmd(CommonRules& rules, ParserState& state) {
    return std::make_unique<WriteFileRules>(rules, state);
}

}  // namespace Parser
