#pragma once

#include <string>

#include "inspect/RunRecord.hpp"
#include "strict/diagnostics/Diagnostic.hpp"

namespace Strict {

/// Compares a run with the manifest that an earlier one wrote, and the outputs on disk with what
/// the manifest lists. Reports the script, each variable and each file that differs. True if none
/// does.
bool compareWithManifest(const std::string& path, const Inspect::RunRecord& record,
                         DiagnosticSink& sink);

}  // namespace Strict
