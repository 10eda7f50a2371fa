#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "strict/script/SourceFile.hpp"

namespace Strict {

/// The words that begin a directive.
inline constexpr std::string_view parameterWord = "PARAMETER";
inline constexpr std::string_view includeWord = "INCLUDE";

/// PARAMETER name [DEFAULT value]
struct ParameterDirective {
    TextSpan whole;
    TextSpan name;
    std::optional<TextSpan> value;  ///< without it a caller has to give one
};

/// INCLUDE file [WITH { name=value, ... }]
struct IncludeDirective {
    struct Argument {
        TextSpan name;
        TextSpan value;
    };
    TextSpan whole;
    TextSpan path;
    std::vector<Argument> arguments;
};

/// A line that begins as a directive and is not one.
struct DirectiveFault {
    TextSpan where;
    std::string text;
    std::string hint;
};

/// The directives of a file, each list in the order of the text.
struct Directives {
    std::vector<ParameterDirective> parameters;
    std::vector<IncludeDirective> includes;
    std::vector<DirectiveFault> faults;
};

/// The text has a word that begins a directive. Without one there is nothing to look for.
bool mayHaveDirectives(std::string_view text);

/// Finds the directives of a text. A line is one if it begins with the word of one, blanks before
/// it allowed, outside of braces, quotes and remarks. A directive takes the rest of its line, and a
/// list of values may go on over several. Takes time linear in the text.
Directives directivesIn(std::string_view text);

/// A part of a text that is one of several names.
struct NamedWord {
    TextSpan where;
    std::size_t name;  ///< its index
};

/// The words of a text that are one of `names`, outside of remarks. The characters of the names of
/// images bound a word.
std::vector<NamedWord> wordsIn(std::string_view text, const std::vector<std::string_view>& names);

/// Whether a text is a name that a parameter can have: characters of the names of images, of which
/// the first is neither a digit nor the sign of an option.
bool isParameterName(std::string_view text);

}  // namespace Strict
