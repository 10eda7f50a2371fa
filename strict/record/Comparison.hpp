#pragma once

#include "inspect/RunRecord.hpp"
#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/files/RunFiles.hpp"

namespace Strict {

/// Compares what a run in memory wrote with the files on disk and reports each that differs, with
/// the areas at which it does and where the bytes there come from. True if all are equal.
bool compareWithDisk(RunFiles& files, const Inspect::RunRecord& record, DiagnosticSink& sink);

}  // namespace Strict
