#pragma once

#include <string>
#include <vector>

namespace Parser {

/// The words that the grammar compares a script with: statements, sources, options, types and
/// formats, without the values that follow them.
std::vector<std::string> keywords();

}  // namespace Parser
