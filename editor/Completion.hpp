#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "editor/Mentions.hpp"
#include "editor/Script.hpp"

namespace Editor {

/// What something that can be typed is.
enum class CompletionKind : unsigned char {
    Statement,
    Directive,
    Option,
    Word,  ///< a source, a type, a format or another value
    Function,
    Image,
    Value,  ///< a CRC, a hash or a signature
    Parameter,
    Variable,
    File,
    Folder
};

/// Something that can be typed.
struct Completion {
    CompletionKind kind;
    std::string label;   ///< what the editor compares with what was typed
    std::string text;    ///< what replaces it
    std::string detail;  ///< one line; may be empty
};

struct Completions {
    TextSpan where;  ///< the part of the script's own file that is replaced
    std::vector<Completion> list;
};

/// What can be typed at an offset of the script's own file. The grammar says what it would take
/// there, and what a name would be to the statement.
Completions completionsAt(const Script& script, const Mentions& mentions, std::size_t offset);

}  // namespace Editor
