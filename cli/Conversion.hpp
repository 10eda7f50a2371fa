#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "buffer/Area.hpp"
#include "parser/grammar/FormatChoice.hpp"
#include "strict/Run.hpp"
#include "strict/diagnostics/Printer.hpp"
#include "strict/script/Program.hpp"

namespace CommandLine {

/// What `convert` is asked for.
struct Conversion {
    std::string input;
    std::string output;
    std::optional<Parser::FormatChoice> format = {};  ///< nothing for that of the ending
    std::optional<Buffer::Area> crop = {};
    std::vector<std::uint8_t> fill = {};  ///< bytes for the gaps; none leaves them gaps
    std::int64_t offset = 0;              ///< added to all addresses
    bool printsScript = false;            ///< instead of running it
};

/// The statements that convert the file, with the text that shows them, or nothing after a
/// diagnostic.
std::optional<Strict::Program> programFor(const Conversion& conversion, Strict::Printer& printer);

/// Runs the statements, or prints the script that does the same.
Strict::ExitCode convert(const Conversion& conversion, Strict::Printer& printer,
                         std::ostream& output);

}  // namespace CommandLine
