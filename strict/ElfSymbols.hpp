#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/files/RunFiles.hpp"

namespace Strict {

/// Gives variables the addresses of symbols of ELF files, as numbers of the language.
///
/// @param requests   texts "NAME=file:symbol"; the first value of a variable counts
/// @param files      through which the files are read
/// @return false after a diagnostic
bool resolveSymbols(const std::vector<std::string>& requests, RunFiles& files,
                    std::map<std::string, std::string>& variables, DiagnosticSink& sink);

}  // namespace Strict
