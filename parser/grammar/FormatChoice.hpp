#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Parser {

/// What `-setFormat` says: a format of an output file and the number that follows its keyword.
struct FormatChoice {
    std::uint32_t row;  ///< of WrapperLib::CmdWriteFile::formats()
    std::optional<std::uint32_t> number;
};

/// The format that `text` says as a whole, by the rule of the option; nothing if it says none.
std::optional<FormatChoice> formatIn(std::string_view text);

/// The name that the number of a choice has in its format; empty if it has none.
std::string nameIn(const FormatChoice& choice);

}  // namespace Parser
