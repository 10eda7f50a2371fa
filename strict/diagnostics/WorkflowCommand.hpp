#pragma once

#include <string>

#include "strict/diagnostics/Diagnostic.hpp"

namespace Strict {

/// A diagnostic as a line that a workflow of GitHub shows beside the source: a command `error`,
/// `warning` or `notice`, as GitHub's "Workflow commands for GitHub Actions" describes them, with
/// the escapes of its toolkit (@actions/core).
std::string workflowCommandOf(const Diagnostic& diagnostic, Severity severity);

}  // namespace Strict
