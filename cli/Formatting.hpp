#pragma once

#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "strict/Run.hpp"
#include "strict/diagnostics/Printer.hpp"

namespace CommandLine {

/// What `tessaron format` is to do.
struct FormatRequest {
    std::vector<std::string> files;  ///< none for standard input, which goes to standard output
    std::map<std::string, std::string> variables;
    bool isCheck = false;  ///< names the files that are not formatted, and changes none
};

/// Formats scripts in their places. One that does not parse is left as it is.
Strict::ExitCode format(const FormatRequest& request, Strict::Printer& printer,
                        std::ostream& output);

}  // namespace CommandLine
