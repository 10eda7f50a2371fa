#pragma once

#include <optional>
#include <string>
#include <type_traits>

#include "facts/Facts.hpp"
#include "parser/grammar/Role.hpp"
#include "strict/diagnostics/Circumstances.hpp"
#include "strict/diagnostics/Kinds.hpp"

namespace Strict {

/// A diagnostic about the statement that reported a fact.
struct FactWords {
    Kind kind;
    std::string text;
    Parser::Roles roles;  ///< of the part that is to blame, the last one of them
    std::string hint = {};
    std::string name = {};  ///< the part that uses this name is to blame, if it is not empty
};

/// The fact is the output of a PRINT_* statement, in the words of CmdTessaron.
template <class Fact>
constexpr bool isPrinted =
    std::is_same_v<Fact, Facts::BufferPrinted> || std::is_same_v<Fact, Facts::ContentPrinted> ||
    std::is_same_v<Fact, Facts::CrcPrinted> || std::is_same_v<Fact, Facts::HashPrinted> ||
    std::is_same_v<Fact, Facts::SignaturePrinted> || std::is_same_v<Fact, Facts::TextPrinted>;

/// The words for a fact of a statement. There are none for what is reported otherwise: by the check
/// before the run, with a place in an input file (FieldWords), or as the output of a PRINT_*.
std::optional<FactWords> wordsFor(const Facts::Fact& fact, const Circumstances& circumstances);

/// What to do about a file that could not be written, by the words of the system for the reason;
/// empty if they say enough.
std::string adviceOnUnwritten(const std::string& reason);

/// Whether the fact says that something was not done, though the statement goes on: an image
/// refused bytes or an area, a writer the file.
bool isRefusal(const Facts::Fact& fact);

}  // namespace Strict
