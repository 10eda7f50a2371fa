#pragma once

#include <string>
#include <vector>

#include "strict/Diagnostic.hpp"
#include "strict/OutputSet.hpp"
#include "strict/Run.hpp"

namespace Strict {

/// The rule "outputs: inputs" in the syntax of make, which ninja reads as well: a blank and "#" are
/// escaped by a backslash, "$" by another one. An input that is an output too is left out.
std::string dependencyRule(const std::vector<std::string>& outputs,
                           const std::vector<std::string>& inputs);

/// Writes the dependency file of a run: what it wrote, and what it read, the script included.
void writeDependencyFile(const RunOptions& options, OutputSet& files, DiagnosticSink& sink);

}  // namespace Strict
