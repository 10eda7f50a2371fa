#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "parser/grammar/Expectations.hpp"
#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/script/ScriptText.hpp"

namespace Strict {

/// The diagnostic for a statement that does not parse.
///
/// @param statement  the prepared text from the beginning of the statement on
/// @param missed     how far the grammar came, and what could have been there
/// @param keywords   the words that begin a statement
Diagnostic syntaxError(const ScriptText& script, std::string_view statement,
                       const Parser::Expectations& missed,
                       const std::vector<std::string_view>& keywords);

/// Where the next line begins that begins with a statement keyword, one past `from`; the end of the
/// text if there is none.
std::size_t nextStatement(std::string_view text, std::size_t from,
                          const std::vector<std::string_view>& keywords);

}  // namespace Strict
