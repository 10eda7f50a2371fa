#pragma once

#include <span>
#include <string>
#include <vector>

#include "cli/Conversion.hpp"
#include "cli/Formatting.hpp"
#include "cli/Inspection.hpp"
#include "strict/Run.hpp"
#include "strict/diagnostics/Policy.hpp"
#include "strict/diagnostics/Printer.hpp"

/// The command line of `tessaron`.
namespace CommandLine {

enum class Command : unsigned char { Run, Info, Diff, Map, Convert, Format, Lsp };

enum class Color : unsigned char { Auto, Always, Never };

/// What the arguments ask for.
struct Request {
    Command command = Command::Run;
    Strict::RunOptions run;
    Inspection inspection;
    Conversion conversion;
    FormatRequest formatting;
    Strict::Policy policy;
    Strict::DiagnosticFormat format = Strict::DiagnosticFormat::Text;
    Color color = Color::Auto;
    bool isQuiet = false;
    std::string folder;  ///< to work in; empty for the present one
};

/// Reads the arguments that follow the program's name.
///
/// Prints help and version on standard output, errors of usage on standard error.
///
/// @param arguments  the program's name and what follows it
/// @param request    filled in if the program is to go on
/// @return the exit code if it is not, or -1
int read(std::span<const char* const> arguments, Request& request);

}  // namespace CommandLine
