#pragma once

#include <string>
#include <string_view>

#include "strict/diagnostics/Diagnostic.hpp"

namespace Strict {

/// Compares the manifest of a run with the one that an earlier run wrote, and the outputs on disk
/// with what that lists. Reports the script, each variable and each file that differs. True if none
/// does.
///
/// @param path    of the manifest that was written
/// @param listed  its text
/// @param made    the manifest of this run
bool compareWithManifest(const std::string& path, std::string_view listed, std::string_view made,
                         DiagnosticSink& sink);

}  // namespace Strict
