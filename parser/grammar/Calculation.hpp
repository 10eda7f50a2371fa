#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "parser/commands/CmdContext.hpp"
#include "parser/grammar/Statement.hpp"

namespace Parser {

/// Replaces the one bracket expression that `text` may hold, and the character before it, by " 0x"
/// and the value in eight digits. A text with any other number of brackets, or with one that has no
/// value, is returned unchanged.
std::string calculated(const std::string& text);

/// The same for a PRINT_TEXT, in whose brackets numbers alone count, or what asks images and
/// symbols as well. Nothing after a report.
std::optional<std::string> calculateNumbers(const std::string& text,
                                            WrapperLib::CmdContext& context);
std::optional<std::string> calculateQueries(const std::string& text,
                                            WrapperLib::CmdContext& context);

/// What the bracket expression of a text asks: parts of it with their roles.
std::vector<Part> queriesIn(std::string_view text);

}  // namespace Parser
