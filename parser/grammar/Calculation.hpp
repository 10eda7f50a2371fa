#pragma once

#include <string>

namespace Parser {

/// Replaces the one bracket expression that `text` may hold, and the character before it, by " 0x"
/// and the value in eight digits. A text with any other number of brackets, or with one that has no
/// value, is returned unchanged.
std::string calculated(const std::string& text);

}  // namespace Parser
