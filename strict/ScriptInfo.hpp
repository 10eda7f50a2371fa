#pragma once

#include <optional>
#include <string>

#include "inspect/Info.hpp"
#include "strict/diagnostics/Diagnostic.hpp"

namespace Strict {

/// What a script and the files that it includes say of themselves, or nothing after a diagnostic.
/// Statements that need values to be parsed are left out from there on.
std::optional<Inspect::Info> readScriptInfo(const std::string& path, DiagnosticSink& sink);

}  // namespace Strict
