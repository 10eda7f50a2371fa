#pragma once

#include <span>
#include <string>

#include "strict/diagnostics/Diagnostic.hpp"

namespace Strict {

/// Diagnostics as a document of the Static Analysis Results Interchange Format (SARIF) 2.1.0, a
/// standard of OASIS. Those of a kind are results under the rule of that name, the others
/// notifications.
///
/// @param subject  the file that diagnostics without a place are about; empty for none
std::string sarifLogOf(std::span<const Judged> diagnostics, const std::string& subject,
                       int exitCode);

}  // namespace Strict
