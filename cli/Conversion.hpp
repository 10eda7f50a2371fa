#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "buffer/Area.hpp"
#include "strict/Run.hpp"
#include "strict/diagnostics/Printer.hpp"

namespace CommandLine {

/// What `convert` is asked for.
struct Conversion {
    std::string input;
    std::string output;
    std::string format;  ///< of WRITE_FILE; empty for that of the ending
    std::optional<Buffer::Area> crop;
    std::vector<std::uint8_t> fill;  ///< bytes for the gaps; none leaves them gaps
    std::int64_t offset = 0;         ///< added to all addresses
    bool printsScript = false;       ///< instead of running it
};

/// The script that converts the file, or nothing after a diagnostic.
std::optional<std::string> scriptFor(const Conversion& conversion, Strict::Printer& printer);

/// Runs the script, or prints it.
Strict::ExitCode convert(const Conversion& conversion, Strict::Printer& printer,
                         std::ostream& output);

}  // namespace CommandLine
