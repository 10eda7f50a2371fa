#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "editor/Text.hpp"

/// What can be seen in the text of a file without its statements.
namespace Editor {

/// SUBSTITUTE name WITH value
struct Substitution {
    TextSpan whole;  ///< without blanks at its end, if it has a value
    TextSpan name;   ///< as it is replaced, likewise
    std::string value;
};

/// The remarks of a text, each up to the end of its line.
std::vector<TextSpan> remarksIn(std::string_view text);

/// The substitutions of a text, outside of its remarks.
std::vector<Substitution> substitutionsIn(std::string_view text,
                                          const std::vector<TextSpan>& remarks);

/// The character may be in the name of an image.
bool isNameCharacter(char c);

/// White space of the language.
bool isBlank(char c);

/// The text without the blanks of the language at its ends.
std::string_view trimmed(std::string_view text);

/// A part of a text that begins with no blank, without those at its end.
TextSpan trimmedSpan(std::string_view text, TextSpan span);

}  // namespace Editor
