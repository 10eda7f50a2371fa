#pragma once

namespace Parser {

/// A position in the text of a script.
using Position = const char*;

}  // namespace Parser
