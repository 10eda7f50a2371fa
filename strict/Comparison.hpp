#pragma once

#include "strict/Diagnostic.hpp"
#include "strict/OutputSet.hpp"

namespace Strict {

/// Compares what a run in memory wrote with the files on disk and reports each that differs, with
/// the areas at which it does. True if all are equal.
bool compareWithDisk(OutputSet& files, DiagnosticSink& sink);

}  // namespace Strict
