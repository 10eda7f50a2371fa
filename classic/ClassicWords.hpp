#pragma once

#include <cstdint>
#include <ostream>
#include <string_view>

#include "facts/Listener.hpp"

namespace Classic {

/// Prints the facts of a run in the words of CmdTessaron, each line flushed.
///
/// No other file knows these sentences. They are printed as users know them, misspellings included.
/// A message with a hexadecimal number switches the output to hexadecimal, and nothing switches it
/// back: later numbers without a base of their own come out in hexadecimal, even after labels such
/// as "(int)". Statements, checksums and the line number of a syntax error have formats of their
/// own.
class ClassicWords final : public Facts::Listener {
public:
    /// @param output  messages and what PRINT_* statements print; only its buffer is used, so its
    ///                number base does not change
    /// @param errors  what was lost while files were read and written, and a script that cannot be
    ///                opened
    ClassicWords(std::ostream& output, std::ostream& errors);

    void hear(const Facts::Fact& fact) override;

    /// The name, version and copyright of the program, two lines.
    ///
    /// @param buildDate  as in "Aug 18 2021"
    void printBanner(std::string_view fileName, unsigned majorVersion, unsigned minorVersion,
                     std::string_view buildDate, std::string_view copyright);

    /// The empty line before everything else.
    void printEmptyLine();

    /// How the program is called, three lines.
    void printUsage();

    /// The difference of the self-test in line `number`, counted from 1.
    void printDifference(std::size_t number);

    /// How the test frame of the self-test ended; 0 is success.
    void printTestFrame(unsigned code);

    /// An exception that no statement expected, as the last line of a run.
    void printUnexpected(std::string_view text);

    /// Whether some of the output could not be written.
    bool hasLostOutput() const { return output_.fail(); }

    /// Reports it if the output could not be written completely.
    void reportLostOutput();

private:
    std::ostream output_;
    std::ostream errors_;
};

}  // namespace Classic
