#pragma once

#include <iosfwd>

#include "strict/RunOptions.hpp"
#include "strict/diagnostics/Printer.hpp"
#include "strict/script/Program.hpp"

namespace Strict {

/// Exit codes of the program.
enum class ExitCode : int {
    Good = 0,
    Failed = 1,   ///< a statement, an input or an output failed
    Unusable = 2  ///< usage or syntax
};

/// Runs a script: all of it, or nothing but diagnostics.
///
/// @param output  what PRINT_* statements print
ExitCode run(const RunOptions& options, Printer& printer, std::ostream& output);

/// Runs a program that was made without a script, likewise.
ExitCode run(const Program& program, Printer& printer, std::ostream& output);

}  // namespace Strict
