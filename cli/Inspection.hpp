#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "buffer/Area.hpp"
#include "facts/InputFormat.hpp"
#include "strict/Run.hpp"
#include "strict/diagnostics/Policy.hpp"
#include "strict/diagnostics/Printer.hpp"

namespace CommandLine {

/// What `info`, `diff` and `map` are asked for.
struct Inspection {
    std::vector<std::string> files;
    /// The formats of the files, or one for all of them; none if names and contents decide.
    std::vector<Facts::InputFormat> formats;
    /// Of devices, whose blocks are read from files for several; nothing for all.
    std::optional<std::uint32_t> family;
    std::vector<std::string> nameFiles;  ///< with the names at addresses, one for all or for each
    bool isJson = false;
    Buffer::AreaList ignored;     ///< by `diff`
    std::size_t context = 1;      ///< of `diff`
    std::size_t mostLines = 200;  ///< of `diff`; 0 for all
    std::size_t width = 0;        ///< 0 for that of the terminal
    bool withSymbols = false;     ///< `info` lists those of ELF files
    bool isAscii = false;         ///< `map` uses no other characters
    std::string svgFile;          ///< of `map`; empty for none
    bool hasColor = false;        ///< on standard output
};

/// Prints what is in the files. Fails if one of them cannot be read or has an error.
Strict::ExitCode info(const Inspection& inspection, Strict::Printer& printer,
                      const Strict::Policy& policy, std::ostream& output);

/// Prints where two files differ. `Failed` if they do, `Unusable` if one cannot be read.
Strict::ExitCode diff(const Inspection& inspection, Strict::Printer& printer, std::ostream& output);

/// Prints a map of the files, one beside the other.
Strict::ExitCode map(const Inspection& inspection, Strict::Printer& printer, std::ostream& output);

}  // namespace CommandLine
