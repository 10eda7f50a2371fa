#pragma once

#include "strict/Diagnostic.hpp"
#include "strict/OutputSet.hpp"

namespace Strict {

/// Compares what a run in memory wrote with the files on disk and reports each that differs, with
/// the first place that does. True if all are equal.
bool compareWithDisk(const OutputSet& files, DiagnosticSink& sink);

}  // namespace Strict
