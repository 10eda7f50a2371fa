#pragma once

#include <string_view>

namespace Strict {

/// Whether a word is a keyword of C17 or of C++20, which include the same headers; neither takes it
/// as the name of a variable.
bool isKeywordOfC(std::string_view word);

/// Whether a word is a type of <stdint.h> of C17, which every array in C includes.
bool isTypeOfStdint(std::string_view word);

}  // namespace Strict
