#pragma once

#include <string>
#include <vector>

#include "inspect/RunRecord.hpp"

namespace Inspect {

/// Which line of a sound file in Intel HEX or S-records gave which addresses, in the order of the
/// file. None for another format.
///
/// @throws Io::bad_open
std::vector<LineRun> lineRunsOf(const std::string& path, const std::string& format);

}  // namespace Inspect
