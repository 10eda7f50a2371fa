#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "buffer/Area.hpp"
#include "facts/InputFormat.hpp"
#include "io/import/SectionChoice.hpp"
#include "parser/commands/Arrangement.hpp"
#include "parser/grammar/FormatChoice.hpp"
#include "strict/Run.hpp"
#include "strict/diagnostics/Printer.hpp"
#include "strict/script/Program.hpp"

namespace CommandLine {

/// How the bytes of a conversion are arranged, see the options of NEW_BUFFER and WRITE_FILE. A
/// number that is 0 was not given.
struct Arranging {
    std::vector<std::string> furtherInputs = {};  ///< of a bus, beside the first one
    std::uint32_t interleave = 0;                 ///< bytes of a lane
    std::optional<Parser::WrapperLib::Arrangement::Lane> lane = {};
    std::uint32_t swappedWord = 0;  ///< bytes
    std::uint32_t inputUnit = 0;    ///< bytes of the words that the input's addresses count
    std::uint32_t outputUnit = 0;   ///< the same of the output
    std::optional<std::uint32_t> shortGaps = {};
    std::uint32_t alignment = 0;
};

/// What `convert` is asked for.
struct Conversion {
    std::string input;
    std::string output;
    std::optional<Parser::FormatChoice> format = {};     ///< nothing for that of the ending
    std::optional<Facts::InputFormat> inputFormat = {};  ///< nothing: name and contents decide
    std::optional<Buffer::Area> crop = {};
    std::vector<std::uint8_t> fill = {};              ///< bytes for the gaps; none leaves them gaps
    std::uint64_t offset = 0;                         ///< added to all addresses, modulo 2^64
    Io::Import::SectionChoice sections = {};          ///< of an ELF file
    std::optional<Parser::FormatChoice> family = {};  ///< its number: of UF2, that is read
    std::string elfTemplate = {};                     ///< the file that an ELF output is a copy of
    Arranging arranging = {};
    bool printsScript = false;  ///< instead of running it
};

/// The statements that convert the file, with the text that shows them, or nothing after a
/// diagnostic.
std::optional<Strict::Program> programFor(const Conversion& conversion, Strict::Printer& printer);

/// Runs the statements, or prints the script that does the same.
Strict::ExitCode convert(const Conversion& conversion, Strict::Printer& printer,
                         std::ostream& output);

}  // namespace CommandLine
