#pragma once

#include <string_view>
#include <vector>

namespace Parser {

/// The trace texts of the parser actions that take the path of an input file.
std::vector<std::string_view> inputFileTraces();

}  // namespace Parser
