#pragma once

#include "strict/meaning/Step.hpp"

namespace Strict {

/// `unknown-text`: FROM_FILE found no records in a file and took its bytes as they are, and all of
/// them are text: the file may be of a text format that nobody knows here. FROM_FILE_BINARY says
/// that it is meant. The statement has run.
void checkUnknownText(const Step& step);

}  // namespace Strict
