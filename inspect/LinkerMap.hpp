#pragma once

#include "inspect/Names.hpp"
#include "platform/Files.hpp"

namespace Inspect {

/// The names in a map file of GNU ld (option -Map), at the addresses that the bytes are loaded to;
/// none in any other text. What has no global symbol is called as its section, or after its object
/// file.
Names namesOfLinkerMap(const Platform::InputFile& file);

}  // namespace Inspect
