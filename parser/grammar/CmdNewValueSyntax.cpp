#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <system_error>
#include <vector>

#include "parser/commands/CmdNewCrc.hpp"
#include "parser/commands/CmdNewHash.hpp"
#include "parser/grammar/Statements.hpp"
#include "util/crc/CrcParameters.hpp"

namespace Parser {

using Spirit::alnum_p;
using Spirit::ch_p;
using Spirit::eps_p;
using Util::Crc::CatalogueEntry;
using WrapperLib::Amount;
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
                   rules.ws >> ((source >> options) | keySource))[on.end()] >>
                  rules.ws;
        source =
            buffersSource(rules, on, "AddFromBuffer -> ", &CmdNewValue::addFromBuffer) >> rules.ws;
        options = *(ownAreasOption | typeOption | wordSizeOption | alignmentOption);
        ownAreasOption = areasOption(rules, on);
        typeOption =
            rules.keyword("-setType") >> rules.equals >> (namedType | describedType) >> rules.ws;
        namedType = KeywordOf(Command::types(), type,
                              rules)[on.row(type, Role::Type, &CmdNewValue::setType)];
        wordSizeOption =
            rules.keyword("-useWordSize") >> rules.equals >>
            wordSize(rules, on, "SetWordSize -> ", Role::WordSize, &CmdNewValue::setWordSize) >>
            rules.ws;
    }

    Rule source, options, ownAreasOption, typeOption, namedType, wordSizeOption;
    // Without a definition they never match.
    Rule describedType, alignmentOption, keySource;
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

/// A hexadecimal number of more than 32 and up to 64 bits. The numbers of the language have 32, so
/// this is one of them at no other place, and no expression.
class WideNumber : public Spirit::parser<WideNumber> {
public:
    /// @param number  set to the number of the last match
    explicit WideNumber(std::uint64_t& number) : number_(&number) {}

    template <class ScannerT>
    typename Spirit::parser_result<WideNumber, ScannerT>::type parse(const ScannerT& scan) const {
        constexpr int base = 16;
        constexpr std::uint64_t narrowest = std::uint64_t{1} << 32U;
        const Position first = scan.first;
        const std::string_view rest(first, static_cast<std::size_t>(scan.last - first));
        const std::size_t digits = std::min(rest.find_first_not_of('0'), rest.size()) + 1;
        if (digits > rest.size() || (rest[digits - 1] != 'x' && rest[digits - 1] != 'X'))
            return scan.no_match();
        std::uint64_t value = 0;
        const auto [end, error] = std::from_chars(first + digits, first + rest.size(), value, base);
        if (error != std::errc() || value < narrowest) return scan.no_match();
        *number_ = value;
        scan.first = end;
        return scan.create_match(static_cast<std::size_t>(end - first), Spirit::nil_t(), first,
                                 end);
    }

private:
    std::uint64_t* number_;
};

/// The types of NEW_CRC with an argument: Catalogue{name}, and Custom{width, polynomial, initial
/// value, true or false for a reflected input, the same for the output, final xor}.
struct NewCrcRules final : NewValueRules<CmdNewCrc> {
    NewCrcRules(CommonRules& rules, ParserState& state, const Words& words)
        : NewValueRules(rules, state, words) {
        const StatementActions<CmdNewCrc> on(state);
        const auto setEntry = [this](CmdNewCrc& statement, std::string_view /*name*/) {
            statement.whenKnown([&statement, crc = entry] { statement.setCatalogueCrc(*crc); });
        };
        const auto collect = [this](std::uint64_t value) {
            return [this, value](Position, Position) { parameters.push_back({value}); };
        };
        const auto setCustom = [this](CmdNewCrc& statement, std::string_view /*text*/) {
            statement.whenKnown([&statement, amounts = parameters] {
                std::vector<std::uint64_t> numbers;
                numbers.reserve(amounts.size());
                for (const Amount& amount : amounts) numbers.push_back(amount.value());
                statement.setCustomCrc(numbers);
            });
        };
        describedType =
            (rules.keyword("Catalogue") >> rules.openBrace >>
             CatalogueName(entry, rules)[on.with("SetCrc_Catalogue -> ", Role::Type, setEntry)] >>
             rules.closeBrace) |
            (rules.keyword("Custom")[([this](Position, Position) { parameters.clear(); })] >>
             rules.openBrace >> number >> number >> number >> flag >> flag >> anyNumber >>
             rules.closeBrace)[on.with("SetCrc_Custom -> ", Role::Type, setCustom)];
        anyNumber =
            WideNumber(wide)[([this](Position, Position) { parameters.push_back({wide}); })] |
            rules.notedValue[([this, &state](Position, Position) {
                parameters.push_back(state.expression.current());
            })];
        number = anyNumber >> rules.separator;
        flag = (rules.keyword("true")[collect(1)] | rules.keyword("false")[collect(0)]) >>
               rules.separator;
        using Util::Crc::CrcAlignment;
        const auto alignment = [&](const char* word, const char* trace, CrcAlignment value) {
            const auto set = [value](CmdNewCrc& statement, std::string_view /*word*/) {
                statement.setAlignment(value);
            };
            return rules.keyword(word)[on.with(trace, Role::Option, set)];
        };
        alignmentOption = rules.keyword("-setAlignment") >> rules.equals >>
                          (alignment("LeftWithOnes", "SetAlignment_LeftWithOnes -> ",
                                     CrcAlignment::LeftWithOnes) |
                           alignment("Left", "SetAlignment_Left -> ", CrcAlignment::Left) |
                           alignment("Right", "SetAlignment_Right -> ", CrcAlignment::Right)) >>
                          rules.ws;
    }

    Rule anyNumber, number, flag;
    const CatalogueEntry* entry = nullptr;  ///< the CRC whose name was read last
    std::uint64_t wide = 0;                 ///< the number of more than 32 bits that was read last
    std::vector<Amount> parameters;         ///< of the Custom that is being read
};

/// NEW_HASH name FROM_KEY path [-setType = type], besides what NEW_CRC takes.
struct NewHashRules final : NewValueRules<CmdNewHash> {
    NewHashRules(CommonRules& rules, ParserState& state, const Words& words)
        : NewValueRules(rules, state, words) {
        const StatementActions<CmdNewHash> on(state);
        keySource =
            rules.keyword("FROM_KEY") >> rules.ws >>
            rules.textArg[on.text("SetKeyFile -> ", Role::KeyFile, &CmdNewHash::setKeyFile)] >>
            rules.ws >> *typeOption;
    }
};

}  // namespace

std::unique_ptr<const StatementRules> newCrcCmd(CommonRules& rules, ParserState& state) {
    const Words words{"NEW_CRC", "CmdNewCrc: Begin -> ", "SetCrcName -> ", Role::MakesCrc};
    return std::make_unique<NewCrcRules>(rules, state, words);
}

std::unique_ptr<const StatementRules> newHashCmd(CommonRules& rules, ParserState& state) {
    const Words words{"NEW_HASH", "CmdNewHash: Begin -> ", "SetHashName -> ", Role::MakesHash};
    return std::make_unique<NewHashRules>(rules, state, words);
}

}  // namespace Parser
