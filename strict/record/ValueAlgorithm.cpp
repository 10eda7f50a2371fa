#include "strict/record/ValueAlgorithm.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "parser/commands/CmdNewCrc.hpp"
#include "parser/commands/CmdNewHash.hpp"

namespace Strict {

namespace {

using Parser::Part;
using Parser::Role;
using Parser::Statement;
using Parser::WrapperLib::CmdNewCrc;
using Parser::WrapperLib::CmdNewHash;
using Parser::WrapperLib::ValueType;

Inspect::Algorithm algorithmOf(const ValueType& type) {
    return {type.keyword, type.meaning, type.parameters};
}

/// The row of a keyword, or null.
const ValueType* typeCalled(std::span<const ValueType> types, std::string_view keyword) {
    const auto row = std::ranges::find_if(
        types, [keyword](const ValueType& type) { return keyword == type.keyword; });
    return row == types.end() ? nullptr : &*row;
}

/// The words true and false of a text, in their order, as 1 and 0.
std::array<std::uint32_t, 2> flagsIn(std::string_view text) {
    std::array<std::uint32_t, 2> flags{};
    std::size_t at = 0;
    for (std::uint32_t& flag : flags) {
        const std::size_t yes = text.find("true", at);
        const std::size_t no = text.find("false", at);
        flag = yes < no ? 1 : 0;
        at = std::min(yes, no) + 1;
    }
    return flags;
}

/// Custom{width, polynomial, initial value, flag, flag, final xor}, of which the numbers are kept
/// as such.
Inspect::Algorithm customOf(const Statement& statement, const Part& type) {
    const auto numbers = statement.numbersOf(type);
    const auto flags = flagsIn(type.text);
    const std::array parameters{numbers[0].value, numbers[1].value, numbers[2].value,
                                flags[0],         flags[1],         numbers[3].value};
    return {"Custom", "", CmdNewCrc::customCrc(parameters)};
}

}  // namespace

Inspect::Algorithm crcOf(const Statement& statement) {
    constexpr std::size_t numbersOfCustom = 4;
    const Part* const type = statement.last(Role::Type);
    if (type == nullptr) return algorithmOf(CmdNewCrc::usualType());
    if (type->numberCount == numbersOfCustom) return customOf(statement, *type);
    if (const ValueType* const row = typeCalled(CmdNewCrc::types(), type->text))
        return algorithmOf(*row);
    const auto* const entry = Util::Crc::findInCatalogue(type->text);
    return entry == nullptr ? Inspect::Algorithm{std::string(type->text), "", {}}
                            : Inspect::Algorithm{std::string(entry->name), "", entry->parameters};
}

Inspect::Algorithm hashOf(const Statement& statement) {
    const std::string_view type = statement.textOf(Role::Type);
    const ValueType* const row = typeCalled(CmdNewHash::types(), type);
    return row == nullptr ? Inspect::Algorithm{std::string(type), "", {}} : algorithmOf(*row);
}

}  // namespace Strict
