#pragma once

#include <string_view>
#include <vector>

#include "editor/Script.hpp"
#include "editor/Text.hpp"

namespace Editor {

/// What came of formatting a script.
enum class FormatOutcome : unsigned char {
    Formatted,    ///< the edits are empty if it was already
    SyntaxError,  ///< it does not parse, so nobody knows which blanks count
    Uncertain     ///< the blanks that would change may count, so it is left alone
};

struct Formatting {
    FormatOutcome outcome;
    std::vector<Edit> edits;                 ///< of the text as it is read
    std::vector<Strict::Diagnostic> faults;  ///< why it does not parse
};

/// The format of scripts: it changes blanks and line breaks and nothing else.
///
/// - A statement and a directive begin a line. A line break within one stays; its next line begins
///   below the first word after the keyword.
/// - One blank separates words, none is around `=` and within the parentheses and braces of
///   numbers; a list that follows a blank has one within its braces.
/// - Of several empty lines one stays. A remark at the end of a line stays in its column if it can.
///
/// Remarks, SUBSTITUTE lines, the values of parameters and texts and paths stay as they are. The
/// result has the same statements, which is verified before it is returned, and is its own format.
///
/// @param name    of the script's file
/// @param edited  gives the texts of files that are open
Formatting format(const std::string& name, std::string_view text, const Settings& settings,
                  const EditedText& edited);

}  // namespace Editor
