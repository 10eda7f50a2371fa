#pragma once

#include <optional>
#include <string>
#include <vector>

#include "editor/Mentions.hpp"
#include "editor/Script.hpp"

/// What an editor shows of a script as a whole: its outline, what can be folded, its colours. All
/// of the script's own file, in the order of its text.
namespace Editor {

/// Something that a script makes or reads.
struct OutlineEntry {
    enum class Kind : unsigned char { Parameter, Include, Image, Crc, Hash, Signature, Output };
    Kind kind;
    std::string name;
    TextSpan whole;  ///< the statement or directive
    TextSpan where;  ///< the name, which lies in it
};

std::vector<OutlineEntry> outlineOf(const Script& script);

/// Lines that can be folded into their first one.
struct Fold {
    TextSpan where;
    bool isRemark = false;
};

/// Statements and directives of several lines, and remarks that follow each other.
std::vector<Fold> foldsOf(const Script& script);

/// What a piece of a script is.
enum class TokenKind : unsigned char {
    Remark,
    Keyword,
    Option,
    Function,
    Image,
    Value,  ///< the name of a CRC, a hash or a signature
    Parameter,
    Variable,
    Word,  ///< a type, a format or another value of the language
    Number,
    String
};

struct Token {
    TextSpan where;  ///< in one line
    TokenKind kind;
    bool isMaking = false;
};

/// They do not overlap.
std::vector<Token> tokensOf(const Script& script, const Mentions& mentions);

}  // namespace Editor
