#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "parser/text/TextMap.hpp"
#include "strict/diagnostics/Diagnostic.hpp"

namespace Strict {

/// "UTF-16" or "UTF-32" if the text begins as one in it, with a byte order mark or with ASCII, or
/// null.
const char* wideEncodingOf(std::string_view text);

/// The text of a script as it was written and as it is parsed, and the way between the two.
class ScriptText {
public:
    /// Takes the text of `file` and prepares it: comments, substitutions, variables.
    ///
    /// @param variables  of the command line
    /// @throws Parser::VariableError
    ScriptText(std::string file, std::string written,
               const std::map<std::string, std::string>& variables);

    /// Takes a text in which nothing is left to prepare.
    ScriptText(std::string file, std::string text);

    /// The name of the file.
    const std::string& file() const { return file_; }

    /// The text as it was written.
    std::string_view written() const { return written_; }

    /// The text that the grammar reads.
    std::string_view prepared() const { return prepared_; }

    /// The place of [`first`, `last`) of the prepared text in the file.
    Place placeOf(std::size_t first, std::size_t last) const;
    Place placeOf(std::string_view part) const;

    /// The place of `length` bytes at `offset` of the text as written.
    Place placeInFile(std::size_t offset, std::size_t length) const;

    /// A note on each variable that a part of the prepared text came from, a few at most.
    std::vector<Note> variableNotes(std::string_view part) const;

    std::size_t offsetOf(std::string_view part) const {
        return static_cast<std::size_t>(part.data() - prepared_.data());
    }

    const Parser::TextMap& map() const { return map_; }

private:
    /// Counted from 1.
    std::size_t lineOf(std::size_t offset) const;
    std::size_t charactersBefore(std::size_t offset) const;
    std::size_t charactersBetween(std::size_t begin, std::size_t end) const;

    std::string file_;
    std::string written_;
    std::string prepared_;
    Parser::TextMap map_;
    /// Made when the first line is asked for: a sound script needs none.
    mutable std::vector<std::size_t> lineStarts_;
    /// The characters before each block of the text, made like the lines.
    mutable std::vector<std::size_t> blocks_;
};

}  // namespace Strict
