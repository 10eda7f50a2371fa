#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "io/Uf2.hpp"
#include "io/formats/InputFormats.hpp"
#include "parser/commands/CmdNewBuffer.hpp"
#include "parser/grammar/NumberName.hpp"
#include "parser/grammar/Statements.hpp"

namespace Parser {

using Io::Formats::InputFormatRow;
using Spirit::anychar_p;
using Spirit::ch_p;
using Spirit::space_p;
using WrapperLib::CmdNewBuffer;

namespace {

constexpr const char* detectedFileTrace = "SetFileAsSource -> ";

/// NEW_BUFFER name source [option ...]
struct NewBufferRules final : StatementRules {
    NewBufferRules(CommonRules& rules, ParserState& state) {
        const StatementActions<CmdNewBuffer> on(state);
        command =
            (rules.keyword("NEW_BUFFER")[on.begin("CmdNewBuffer: Begin -> ")] >> rules.ws >>
             rules.name[on.text("SetName -> ", Role::MakesImage, &CmdNewBuffer::setBufferName)] >>
             newSource >> newOptions)[on.end()] >>
            rules.ws;
        newSource =
            rules.ws >>
            (FirstOf(fileRules(rules, state)) | rules.keyword("EMPTY") |
             (rules.keyword("FROM_VALUES") >> rules.ws >>
              rules.valueList[on.values("SetHexList -> ", Role::Bytes, &CmdNewBuffer::setValues)]) |
             buffersSource(rules, on, "AddBufferAsSource -> ", &CmdNewBuffer::addSourceBuffer)) >>
            rules.ws;
        newOptions =
            *(newStartAddressOption | newByteOrderOption | newAreasOption | bufferRangeOption |
              newOverlapOption | laneOption | interleaveOption | newSwapOption | newUnitOption |
              sectionsOption | newSizeOption | familyOption);
        newSizeOption = valueSizeOption(rules, on);
        // A name as linkers take it, such as .text.main.
        sectionName = rules.expected(
            "the name of a section",
            +(anychar_p - (space_p | ch_p(',') | ch_p(';') | ch_p('{') | ch_p('}'))));
        const auto sections = [&](const char* keyword, const auto& action) {
            return rules.keyword(keyword) >> rules.equals >> rules.openBrace >>
                   +(sectionName[action] >> rules.separator) >> rules.closeBrace >> rules.ws;
        };
        sectionsOption =
            sections("-useSections",
                     on.text("UseSection -> ", Role::Sections, &CmdNewBuffer::useSection)) |
            sections("-skipSections",
                     on.text("SkipSection -> ", Role::Sections, &CmdNewBuffer::skipSection));
        familyOption =
            rules.keyword("-useFamily") >> rules.equals >>
            (NumberName(state, &Io::Uf2::families,
                        family)[on.with("UseFamily -> ", Role::Family,
                                        [this](CmdNewBuffer& image, std::string_view) {
                                            image.whenKnown([&image, number = family] {
                                                image.setFamily(number);
                                            });
                                        })] |
             rules
                 .notedValue[on.number("UseFamily -> ", Role::Family, &CmdNewBuffer::setFamily)]) >>
            rules.ws;
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
        newOverlapOption = overlapOption(rules, on);
        laneOption =
            rules.keyword("-useLane") >> rules.equals >>
            (rules.openBrace >> rules.listedValue >> rules.separator >> rules.listedValue >>
             rules.separator >> rules.listedValue >>
             rules.closeBrace)[on.values("SetLane -> ", Role::Lane, &CmdNewBuffer::setLane)] >>
            rules.ws;
        interleaveOption = rules.keyword("-interleave") >> rules.equals >>
                           rules.notedValue[on.number("SetInterleave -> ", Role::Interleave,
                                                      &CmdNewBuffer::setInterleave)] >>
                           rules.ws;
        newSwapOption = swapOption(rules, on);
        newUnitOption = addressUnitOption(rules, on);
    }

    /// A rule for each source that is a file.
    std::vector<const Rule*> fileRules(CommonRules& rules, ParserState& state) {
        const StatementActions<CmdNewBuffer> on(state);
        std::vector<const Rule*> alternatives;
        const auto add = [&](const char* keyword, const auto& action) {
            Rule& rule = files.emplace_back();
            rule = rules.keyword(keyword) >> rules.ws >> rules.textArg[action];
            alternatives.push_back(&rule);
        };
        for (const InputFormatRow& format : Io::Formats::inputFormats()) {
            if (format.keyword == nullptr) continue;
            const auto set = [&format](CmdNewBuffer& image, std::string_view text) {
                image.setFileOf(std::string(text), format);
            };
            add(format.keyword, on.with(format.trace, Role::InputFile, set,
                                        static_cast<std::uint32_t>(FileReading::Named)));
            // It is the beginning of the keyword for raw bytes, so it comes after that.
            if (format.format == Facts::InputFormat::RawBinary)
                add("FROM_FILE",
                    on.text(detectedFileTrace, Role::InputFile, &CmdNewBuffer::setFile));
        }
        return alternatives;
    }

    Rule newSource, newOptions, newStartAddressOption, startAddressSetting, newByteOrderOption,
        newAreasOption, bufferRangeOption, newOverlapOption, laneOption, interleaveOption,
        newSwapOption, newUnitOption, sectionsOption, newSizeOption, sectionName, familyOption;
    std::uint32_t family = 0;  ///< the number whose name was read last
    std::deque<Rule> files;
};

}  // namespace

std::unique_ptr<const StatementRules> newBufferCmd(CommonRules& rules, ParserState& state) {
    return std::make_unique<NewBufferRules>(rules, state);
}

}  // namespace Parser
