#pragma once

#include <map>
#include <string>

#include "parser/text/TextMap.hpp"

/// Preparation of a script's text before it is parsed. Both operations take time linear in the
/// text, whatever the length of its lines.
namespace Parser {

/// Removes from each line what the regular expression "//.*$" matches: a comment up to the end of
/// its line, quotes or not. Line feeds stay, and so do the numbers of the lines.
///
/// @param map  takes what became of the text, unless it is null
void removeComments(std::string& text, TextMap* map = nullptr);

/// Removes what the regular expression "SUBSTITUTE (.*) WITH (.*)$" matches in each line, and
/// enters its two groups, without the white space at their ends, into `variables`. A name that is
/// already there keeps its value.
///
/// @param map  takes what became of the text, unless it is null
void takeSubstitutions(std::string& text, std::map<std::string, std::string>& variables,
                       TextMap* map = nullptr);

}  // namespace Parser
