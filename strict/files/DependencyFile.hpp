#pragma once

#include <string>
#include <vector>

#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/files/RunFiles.hpp"

namespace Strict {

/// The rule "outputs: inputs" in the syntax of make, which ninja reads as well: a blank, "#" and
/// ":" are escaped by a backslash, "$" by another one.
std::string dependencyRule(const std::vector<std::string>& outputs,
                           const std::vector<std::string>& inputs);

/// Writes the dependency file of a run: what it wrote, and what it read, the script included. An
/// input that is an output too is left out.
///
/// @param path   where to write it
/// @param given  what the command line names beside them: the script, and the file with the names
///               at addresses. Nothing can depend on standard input, "-", and on none, "".
void writeDependencyFile(const std::string& path, const std::vector<std::string>& given,
                         RunFiles& files, DiagnosticSink& sink);

}  // namespace Strict
