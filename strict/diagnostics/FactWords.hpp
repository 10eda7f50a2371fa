#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "facts/Facts.hpp"
#include "parser/grammar/Role.hpp"
#include "strict/diagnostics/Kinds.hpp"

namespace Strict {

/// What the words for a fact depend on beside the fact.
struct Circumstances {
    /// Why the last attempt to open, create or write a file, or to start a program, failed, in the
    /// system's words; empty if the system gave no reason.
    std::function<std::string(std::string_view path)> reason;
    /// A statement makes something of that name, whether it succeeds or not.
    std::function<bool(std::string_view name)> isMade;
    /// The statements are of a script, whose variables and marks may be wrong.
    bool isScript = true;
};

/// A diagnostic about the statement that reported a fact.
struct FactWords {
    Kind kind;
    std::string text;
    std::vector<Parser::Role> roles;  ///< of the part that is to blame, the last one of them
    std::string hint = {};
    std::string name = {};  ///< the part that uses this name is to blame, if it is not empty
};

/// The fact is the output of a PRINT_* statement, in the words of CmdTessaron.
template <class Fact>
constexpr bool isPrinted =
    std::is_same_v<Fact, Facts::BufferPrinted> || std::is_same_v<Fact, Facts::ContentPrinted> ||
    std::is_same_v<Fact, Facts::CrcPrinted> || std::is_same_v<Fact, Facts::HashPrinted> ||
    std::is_same_v<Fact, Facts::TextPrinted>;

/// The words for a fact of a statement. There are none for what is reported otherwise: by the check
/// before the run, with a place in an input file (FieldWords), or as the output of a PRINT_*.
std::optional<FactWords> wordsFor(const Facts::Fact& fact, const Circumstances& circumstances);

/// Whether the fact says that something was not done, though the statement goes on: an image
/// refused bytes or an area, a writer the file.
bool isRefusal(const Facts::Fact& fact);

}  // namespace Strict
