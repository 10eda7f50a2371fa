#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "editor/Mentions.hpp"
#include "editor/Script.hpp"

namespace Editor {

/// What an editor shows of a place in a script.
struct Hover {
    TextSpan where;    ///< in the script's own file
    std::string text;  ///< Markdown
};

/// What is known of what is at an offset of the script's own file: a name, a variable, a type, a
/// number, an area, a file or a word of the language.
std::optional<Hover> hoverAt(const Script& script, const Mentions& mentions, std::size_t offset);

/// "CRC-32/ISO-HDLC: width 32, ... check value 0xCBF43926", or what a type of the language does;
/// empty for a word that is none.
std::string descriptionOfType(std::string_view word);

}  // namespace Editor
