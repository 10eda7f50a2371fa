#pragma once

#include <vector>

#include "inspect/RunRecord.hpp"

namespace Strict {

/// The outputs of a run, each once: several statements may write to one device. One that a called
/// program has removed is left out.
std::vector<const Inspect::FileRecord*> releasedFiles(const Inspect::RunRecord& record);

}  // namespace Strict
