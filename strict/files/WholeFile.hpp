#pragma once

#include <string>
#include <string_view>

#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/files/OutputSet.hpp"

namespace Strict {

/// Adds a file to the outputs of a run, or reports why that is not possible.
void addFile(OutputSet& files, const std::string& path, std::string_view text,
             DiagnosticSink& sink);

/// Puts all outputs in place, or reports the one that could not be.
void commit(OutputSet& files, DiagnosticSink& sink);

/// Writes a file as a whole or not at all, or reports why that is not possible.
void writeWhole(const std::string& path, std::string_view text, DiagnosticSink& sink);

}  // namespace Strict
