#pragma once

#include <string>

#include "facts/Facts.hpp"

namespace Facts {

/// The name of a format in messages.
std::string nameOfFormat(InputFormat format);

/// What is wrong with the file, as the end of a sentence; numbers in decimal, addresses and sizes
/// of the file in hexadecimal.
std::string textOf(const FileMalformed& fact);

}  // namespace Facts
