#include <cstddef>
#include <memory>
#include <string_view>

#include "parser/commands/CmdPrintText.hpp"
#include "parser/grammar/Calculation.hpp"
#include "parser/grammar/Statements.hpp"

namespace Parser {

using WrapperLib::CmdPrintText;

namespace {

/// PRINT_TEXT text [-resolveSymbolsAsHexValue = { name ... }]
struct PrintTextRules final : StatementRules {
    PrintTextRules(CommonRules& rules, ParserState& state) {
        const StatementActions<CmdPrintText> on(state);
        const auto noteText = [&state](Position first, Position last) {
            state.statement.setText(first, last);
            if (!state.statement.keepsStatements()) return;
            for (const Part& query : queriesIn({first, static_cast<std::size_t>(last - first)}))
                state.statement.step("", query.role, query.text.data(),
                                     query.text.data() + query.text.size());
        };
        // The statement takes its text at its end, with the trace text that users know.
        const auto takeText = [&state](CmdPrintText& print, std::string_view) {
            print.setText(state.statement.text());
        };
        command =
            (rules.keyword("PRINT_TEXT")[on.begin("CmdPrintText_Begin: Begin -> ")] >> rules.ws >>
             rules.textArg[noteText] >> rules.ws >>
             printTextOptions)[on.with("SetFileAsSource -> ", Role::None, takeText)][on.end()] >>
            rules.ws;
        printTextOptions = symbolsOption(rules, on);
    }

    Rule printTextOptions;
};

}  // namespace

std::unique_ptr<const StatementRules> printTextCmd(CommonRules& rules, ParserState& state) {
    return std::make_unique<PrintTextRules>(rules, state);
}

}  // namespace Parser
