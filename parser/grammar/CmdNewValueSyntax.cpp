#include <cstdint>
#include <memory>
#include <string_view>

#include "parser/commands/CmdNewCrc.hpp"
#include "parser/commands/CmdNewHash.hpp"
#include "parser/grammar/Statements.hpp"
#include "util/crc/CrcParameters.hpp"

namespace Parser {

using Spirit::alnum_p;
using Spirit::ch_p;
using Spirit::eps_p;
using Util::Crc::CatalogueEntry;
using WrapperLib::CmdNewCrc;
using WrapperLib::CmdNewHash;
using WrapperLib::CmdNewValue;
using WrapperLib::ValueType;

namespace {

/// The words in which NEW_CRC and NEW_HASH differ.
struct Words {
    const char* keyword;
    const char* beginTrace;
    const char* nameTrace;
    Role role;  ///< of the name
};

/// NEW_CRC name source [option ...], and NEW_HASH
template <class Command>
struct NewValueRules : StatementRules {
    NewValueRules(CommonRules& rules, ParserState& state, const Words& words) {
        const StatementActions<CmdNewValue> on(state);
        const StatementActions<Command> onKeyword(state);
        command = (rules.keyword(words.keyword)[onKeyword.begin(words.beginTrace)] >> rules.ws >>
                   rules.name[on.text(words.nameTrace, words.role, &CmdNewValue::setName)] >>
                   source >> options)[on.end()] >>
                  rules.ws;
        source = rules.ws >>
                 buffersSource(rules, on, "AddFromBuffer -> ", &CmdNewValue::addFromBuffer) >>
                 rules.ws;
        options = *(ownAreasOption | typeOption | wordSizeOption);
        ownAreasOption = areasOption(rules, on);
        typeOption =
            rules.keyword("-setType") >> rules.equals >> (namedType | describedType) >> rules.ws;
        namedType = KeywordOf(Command::types(), type,
                              rules)[on.row(type, Role::Type, &CmdNewValue::setType)];
        const auto setWordSize = [](CmdNewValue& statement, std::string_view digit) {
            statement.setWordSize(static_cast<std::uint32_t>(digit.front() - '0'));
        };
        wordSizeOption =
            rules.keyword("-useWordSize") >> rules.equals >>
            rules.expected(
                "2, 4 or 8",
                (ch_p('2') | ch_p('4') | ch_p('8')) >>
                    ~eps_p(alnum_p))[on.with("SetWordSize -> ", Role::WordSize, setWordSize)] >>
            rules.ws;
    }

    Rule source, options, ownAreasOption, typeOption, namedType, wordSizeOption;
    Rule describedType;               ///< without a definition it never matches
    const ValueType* type = nullptr;  ///< the row of the keyword that was read last
};

/// The name of a CRC of the catalogue, case ignored, up to white space or a delimiter.
class CatalogueName : public Spirit::parser<CatalogueName> {
public:
    /// @param matched  set to the CRC of the last match
    CatalogueName(const CatalogueEntry*& matched, const CommonRules& rules)
        : matched_(&matched), expectations_(&rules.expectations()) {}

    template <class ScannerT>
    typename Spirit::parser_result<CatalogueName, ScannerT>::type parse(
        const ScannerT& scan) const {
        const Position first = scan.first;
        const std::string_view rest(first, static_cast<std::size_t>(scan.last - first));
        const std::string_view name = rest.substr(0, rest.find_first_of("},; \t\n\v\f\r"));
        if (const CatalogueEntry* const entry = Util::Crc::findInCatalogue(name)) {
            *matched_ = entry;
            scan.first = first + name.size();
            return scan.create_match(name.size(), Spirit::nil_t(), first, scan.first);
        }
        if (*expectations_ != nullptr)
            for (const CatalogueEntry& entry : Util::Crc::catalogue())
                (*expectations_)->miss(first, entry.name);
        return scan.no_match();
    }

private:
    const CatalogueEntry** matched_;
    Expectations* const* expectations_;
};

/// The types of NEW_CRC with an argument: Catalogue{name}, and Custom{width, polynomial, initial
/// value, true or false for a reflected input, the same for the output, final xor}.
struct NewCrcRules final : NewValueRules<CmdNewCrc> {
    NewCrcRules(CommonRules& rules, ParserState& state, const Words& words)
        : NewValueRules(rules, state, words) {
        const StatementActions<CmdNewCrc> on(state);
        const auto setEntry = [this](CmdNewCrc& statement, std::string_view /*name*/) {
            statement.setCatalogueCrc(*entry);
        };
        const auto collect = [&state](std::uint32_t value) {
            return [&state, value](Position, Position) { state.statement.collectValue(value); };
        };
        describedType =
            (rules.keyword("Catalogue") >> rules.openBrace >>
             CatalogueName(entry, rules)[on.with("SetCrc_Catalogue -> ", Role::Type, setEntry)] >>
             rules.closeBrace) |
            (rules.keyword("Custom") >> rules.openBrace >> number >> number >> number >> flag >>
             flag >> rules.listedValue >>
             rules
                 .closeBrace)[on.values("SetCrc_Custom -> ", Role::Type, &CmdNewCrc::setCustomCrc)];
        number = rules.listedValue >> rules.separator;
        flag = (rules.keyword("true")[collect(1)] | rules.keyword("false")[collect(0)]) >>
               rules.separator;
    }

    Rule number, flag;
    const CatalogueEntry* entry = nullptr;  ///< the CRC whose name was read last
};

}  // namespace

std::unique_ptr<const StatementRules> newCrcCmd(CommonRules& rules, ParserState& state) {
    const Words words{"NEW_CRC", "CmdNewCrc: Begin -> ", "SetCrcName -> ", Role::MakesCrc};
    return std::make_unique<NewCrcRules>(rules, state, words);
}

std::unique_ptr<const StatementRules> newHashCmd(CommonRules& rules, ParserState& state) {
    const Words words{"NEW_HASH", "CmdNewHash: Begin -> ", "SetHashName -> ", Role::MakesHash};
    return std::make_unique<NewValueRules<CmdNewHash>>(rules, state, words);
}

}  // namespace Parser
