#pragma once

#include <string>

#include "inspect/RunRecord.hpp"

namespace Strict {

/// The SHA-256 of each output that is a file, a line each, as `sha256sum --binary` of GNU coreutils
/// writes them and `sha256sum --check` reads them in the folder of the run.
std::string checksumListOf(const Inspect::RunRecord& record);

}  // namespace Strict
