#pragma once

#include <string>

#include "facts/Facts.hpp"

namespace Classic {

/// The name of a format in messages.
std::string nameOfFormat(Facts::InputFormat format);

/// What is wrong with the file, as the end of a sentence; numbers in decimal, addresses and sizes
/// of the file in hexadecimal.
std::string wordsFor(const Facts::FileMalformed& fact);

}  // namespace Classic
