#pragma once

#include <functional>

#include "inspect/RunRecord.hpp"
#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/files/RunFiles.hpp"
#include "strict/record/Provenance.hpp"

namespace Strict {

/// Compares what a run in memory wrote with the files on disk and reports each that differs, with
/// the areas at which it does, what is there, and where the bytes come from. True if all are equal.
///
/// @param record      gives the record of the run, which only explains what differs
/// @param provenance  of the run
bool compareWithDisk(RunFiles& files, const std::function<const Inspect::RunRecord&()>& record,
                     const Provenance& provenance, DiagnosticSink& sink);

}  // namespace Strict
