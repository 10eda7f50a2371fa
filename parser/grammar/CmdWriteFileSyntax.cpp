#include <algorithm>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "io/NamedNumber.hpp"
#include "parser/commands/CmdWriteFile.hpp"
#include "parser/grammar/FormatChoice.hpp"
#include "parser/grammar/NumberName.hpp"
#include "parser/grammar/Statements.hpp"

namespace Parser {

using Spirit::alnum_p;
using Spirit::alpha_p;
using Spirit::ch_p;
using Spirit::eps_p;
using WrapperLib::CmdWriteFile;
using WrapperLib::ExportFormat;
using WrapperLib::FormatNumber;

namespace {

/// Nothing, in a statement that names the file that its format copies or needs none.
class NamedTemplate : public Spirit::parser<NamedTemplate> {
public:
    explicit NamedTemplate(ParserState& state) : state_(&state) {}

    template <class ScannerT>
    typename Spirit::parser_result<NamedTemplate, ScannerT>::type parse(
        const ScannerT& scan) const {
        const Position first = scan.first;
        if (!state_->statement.command<CmdWriteFile>().lacksTemplate())
            return scan.create_match(0, Spirit::nil_t(), first, first);
        if (state_->expectations != nullptr)
            state_->expectations->missNeeded(first, "-setElfTemplate");
        return scan.no_match();
    }

private:
    ParserState* state_;
};

/// WRITE_FILE path WITH_BUFFERS { name ... } [option ...]
struct WriteFileRules final : StatementRules {
    WriteFileRules(CommonRules& rules, ParserState& state) {
        const StatementActions<CmdWriteFile> on(state);
        command = (rules.keyword("WRITE_FILE")[on.begin("CmdWriteFile: Begin -> ")] >> rules.ws >>
                   rules.textArg[on.text("SetFileName -> ", Role::OutputFile,
                                         &CmdWriteFile::setFileName)] >>
                   writeBuffers >> writeOptions >> NamedTemplate(state))[on.end()] >>
                  rules.ws;
        writeBuffers = rules.ws >> rules.keyword("WITH_BUFFERS") >> rules.ws >> rules.openBrace >>
                       *(rules.name[on.text("AddBufferToExportList -> ", Role::UsesImage,
                                            &CmdWriteFile::addBuffer)] >>
                         rules.separator) >>
                       rules.closeBrace >> rules.ws;
        writeOverlapOption = overlapOption(rules, on);
        writeOptions = *(formatOption | skipUnwrittenOption | writeOverlapOption | arrayNameOption |
                         guardOption | headerOption | idOption | writeSwapOption | paddingOption |
                         writeUnitOption | templateOption | executionAddressOption);
        writeUnitOption = addressUnitOption(rules, on);
        writeSwapOption = swapOption(rules, on);
        paddingOption = ((rules.keyword("-fillGapsUpTo") >> rules.equals >>
                          rules.notedValue[on.number("SetFillGapsUpTo -> ", Role::ShortGaps,
                                                     &CmdWriteFile::setShortGaps)]) |
                         (rules.keyword("-alignTo") >> rules.equals >>
                          rules.notedValue[on.number("SetAlignTo -> ", Role::Alignment,
                                                     &CmdWriteFile::setAlignment)])) >>
                        rules.ws;
        templateOption = rules.keyword("-setElfTemplate") >> rules.equals >>
                         rules.textArg[on.text("SetElfTemplate -> ", Role::Template,
                                               &CmdWriteFile::setElfTemplate)] >>
                         rules.ws;
        arrayNameOption =
            rules.keyword("-setArrayName") >> rules.equals >>
            rules.expected("a name of C", (alpha_p | ch_p('_')) >> *(alnum_p | ch_p('_')))[on.text(
                "SetArrayName -> ", Role::ArrayName, &CmdWriteFile::setArrayName)] >>
            rules.ws;
        idOption =
            ((rules.keyword("-setVendorId") >> rules.equals >>
              rules
                  .notedValue[on.number("SetVendorId -> ", Role::Option, &CmdWriteFile::setVendorId,
                                        static_cast<std::uint32_t>(UsbId::Vendor))]) |
             (rules.keyword("-setProductId") >> rules.equals >>
              rules.notedValue[on.number("SetProductId -> ", Role::Option,
                                         &CmdWriteFile::setProductId,
                                         static_cast<std::uint32_t>(UsbId::Product))])) >>
            rules.ws;
        skipUnwrittenOption =
            rules.keyword("-skipUnwritten")[on.with(
                "SetSkipUnwritten -> ", Role::Gaps,
                [](CmdWriteFile& write, std::string_view) { write.skipUnwritten(); })] >>
            rules.ws;
        formatName = FirstOf(formatRules(rules, state));
        formatList = FirstOf(listRules(rules, state));
        formatOption =
            rules.keyword("-setFormat") >> rules.equals >> (formatList | formatName) >> rules.ws;
        guardOption =
            rules.keyword("-setIncludeGuard") >> rules.equals >>
            rules.expected("a name of C", (alpha_p | ch_p('_')) >> *(alnum_p | ch_p('_')))[on.text(
                "SetIncludeGuard -> ", Role::GuardName, &CmdWriteFile::setIncludeGuard)] >>
            rules.ws;
        headerOption = rules.keyword("-setHeaderText") >> rules.equals >>
                       rules.textArg[on.text("SetHeaderText -> ", Role::Header,
                                             &CmdWriteFile::setHeaderText)] >>
                       rules.ws;
        // A bare number is the execution address; the keyword takes a name, digits or not.
        executionAddressOption =
            ((rules.keyword("-setExecutionAddress") >> rules.equals >>
              ((ch_p('.') | eps_p) >> rules.name)[on.text(
                  "SetExecutionStartAddress -> ", Role::Section, &CmdWriteFile::setSection)]) |
             rules.notedValue[on.number("SetExecutionStartAddress -> ", Role::Start,
                                        &CmdWriteFile::setExecutionStartAddress)]) >>
            rules.ws;
    }

    /// A rule for each format. The form with a number, if the format has one, comes first.
    std::vector<const Rule*> formatRules(CommonRules& rules, ParserState& state) {
        const StatementActions<CmdWriteFile> on(state);
        std::vector<const Rule*> alternatives;
        std::uint32_t choice = 0;  // the row of the table
        for (const ExportFormat& format : CmdWriteFile::formats()) {
            const auto bare = on.with(
                format.trace, Role::Format,
                [&format](CmdWriteFile& write, std::string_view) { write.setFormat(format); },
                choice);
            const auto set = [&format](CmdWriteFile& write, const WrapperLib::Amount& amount) {
                write.setFormat(format);
                write.whenKnown([&write, &format, amount] {
                    write.setFormatNumber(format, static_cast<std::uint32_t>(amount.value()));
                });
            };
            const auto numbered = on.with(
                format.trace, Role::Format,
                [&state, set](CmdWriteFile& write, std::string_view) {
                    set(write, state.expression.current());
                },
                choice);
            Rule& rule = formats.emplace_back();
            if (format.numberForm == FormatNumber::None)
                rule = rules.keyword(format.keyword)[bare];
            else if (format.numberForm == FormatNumber::Required)
                rule = rules.keyword(format.keyword) >> rules.expected("_", ch_p('_')) >>
                       rules.notedValue[numbered];
            else if (format.numberForm == FormatNumber::Named)
                rule = rules.keyword(format.keyword) >> rules.expected("_", ch_p('_')) >>
                       (NumberName(state, format.names, named)[on.with(
                            format.trace, Role::Format,
                            [this, set](CmdWriteFile& write, std::string_view) {
                                set(write, {named});
                            },
                            choice)] |
                        rules.notedValue[numbered]);
            else
                rule = (rules.keyword(format.keyword) >> ch_p('_') >> rules.notedValue[numbered]) |
                       rules.keyword(format.keyword)[bare];
            alternatives.push_back(&rule);
            ++choice;
        }
        return alternatives;
    }

    /// A rule for each format with a list, as Uf2_{RP2040, RP2350_ARM_S}. The brace alone is not
    /// noted as missing: nearly all scripts have a name there.
    std::vector<const Rule*> listRules(CommonRules& rules, ParserState& state) {
        const StatementActions<CmdWriteFile> on(state);
        std::vector<const Rule*> alternatives;
        std::uint32_t choice = 0;  // the row of the table
        for (const ExportFormat& format : CmdWriteFile::formats()) {
            const std::uint32_t row = choice++;
            if (format.setNumbers == nullptr) continue;
            // A name is not an expression, so no digits are noted with its number.
            const auto addNamed = [this, &state](Position first, Position /*last*/) {
                state.statement.noteValue({named}, first, first);
                namedList.add({named});
            };
            const auto addNumber = [this, &state](Position, Position) {
                namedList.add(state.expression.current());
            };
            const auto set = [this, &format](CmdWriteFile& write, std::string_view) {
                write.setFormat(format);
                write.whenKnown([&write, &format, list = namedList]() mutable {
                    write.setFormatNumbers(format, std::move(list).values());
                });
            };
            Rule& rule = formats.emplace_back();
            rule = rules.keyword(format.keyword) >> ch_p('_') >>
                   (rules.ws >> ch_p('{')[([this](char) { namedList.clear(); })] >> rules.ws >>
                    +((NumberName(state, format.names, named)[addNamed] |
                       rules.notedValue[addNumber]) >>
                      rules.separator) >>
                    rules.closeBrace)[on.with(format.trace, Role::Format, set, row)];
            alternatives.push_back(&rule);
        }
        return alternatives;
    }

    std::uint32_t named = 0;           ///< the number whose name was read last
    WrapperLib::AmountList namedList;  ///< those of the list that is being read
    Rule formatList, guardOption, headerOption;
    Rule writeBuffers, writeOptions, formatOption, formatName, skipUnwrittenOption,
        executionAddressOption, arrayNameOption, idOption, writeOverlapOption, writeSwapOption,
        paddingOption, writeUnitOption, templateOption;
    std::deque<Rule> formats;
};

const ExportFormat& rowOf(const FormatChoice& choice) {
    return CmdWriteFile::formats()[choice.row];
}

}  // namespace

std::optional<FormatChoice> formatIn(std::string_view text) {
    ParserState state(nullptr);
    state.statement.keepStatements(text.size());
    CommonRules rules(state);
    const WriteFileRules write(rules, state);
    const Position first = text.data();
    state.beginText(text.size());
    state.statement.begin<CmdWriteFile>("", first, first);
    const auto length = static_cast<std::size_t>(
        Spirit::parse(first, first + text.size(), write.formatName).length);
    state.statement.end(first, first + text.size());
    const Statement statement = state.statement.statements()[0];
    const Part* const format = statement.last(Role::Format);
    if (format == nullptr || length != text.size()) return std::nullopt;
    FormatChoice choice{format->choice, std::nullopt};
    if (format->numberCount != 0)
        choice.number = statement.numbersOf(*format).back().value();
    else if (rowOf(choice).numberForm == FormatNumber::Named)
        choice.number = write.named;
    return choice;
}

std::string nameIn(const FormatChoice& choice) {
    if (rowOf(choice).numberForm != FormatNumber::Named) return {};
    const auto names = rowOf(choice).names();
    const auto named = std::ranges::find(names, choice.number, &Io::NamedNumber::number);
    return named == names.end() ? std::string() : std::string(named->name);
}

std::unique_ptr<const StatementRules> writeFileCmd(CommonRules& rules, ParserState& state) {
    return std::make_unique<WriteFileRules>(rules, state);
}

}  // namespace Parser
