#pragma once

#include <cstddef>
#include <exception>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "parser/text/TextMap.hpp"
#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/script/ScriptSources.hpp"

namespace Strict {

/// "UTF-16" or "UTF-32" if the text begins as one in it, with a byte order mark or with ASCII, or
/// null.
const char* wideEncodingOf(std::string_view text);

/// The value that a parameter has where a file is included.
struct ParameterValue {
    std::string name;
    /// As the caller wrote it: it is put in place last of all, so that nothing is replaced in it.
    std::string value;
};

/// The text of a script with the files that it includes, put together.
struct AssembledText {
    ScriptSources sources;
    std::string text;
    /// The way from the text back to the sources. What a parameter has brought in has the number of
    /// the parameter, counted from `firstParameter`, as its variable.
    Parser::TextStage stage;
    std::vector<ParameterValue> parameters;

    /// Above the numbers of all other variables.
    static constexpr std::size_t firstParameter = ~std::size_t{0} / 2 + 1;
};

/// A SUBSTITUTE whose name is a pattern has taken the place of a value apart.
class BrokenValue : public std::exception {};

/// The text of a script as it was written and as it is parsed, and the way between the two.
class ScriptText {
public:
    /// Takes the text of `file` and prepares it: comments, substitutions, variables.
    ///
    /// @param variables  of the command line
    /// @throws Parser::VariableError
    ScriptText(std::string file, std::string written,
               const std::map<std::string, std::string>& variables);

    /// Prepares a script that was put together from its files. The values of its parameters are
    /// put in place at the end.
    ///
    /// @throws Parser::VariableError
    /// @throws BrokenValue
    ScriptText(AssembledText assembled, const std::map<std::string, std::string>& variables);

    /// Takes a text in which nothing is left to prepare.
    ScriptText(std::string file, std::string text);

    /// The name of the file.
    const std::string& file() const { return sources_.files().front().name(); }

    /// The text as it was written, without the files that it includes.
    std::string_view written() const { return sources_.files().front().text(); }

    /// The text that the grammar reads.
    std::string_view prepared() const { return prepared_; }

    /// The place of [`first`, `last`) of the prepared text in the file that has it.
    Place placeOf(std::size_t first, std::size_t last) const;
    Place placeOf(std::string_view part) const;

    /// What a part of the prepared text was written as, in the texts of all inclusions (see
    /// `ScriptSources`): the name of the variable or parameter whose value the part begins with, or
    /// the part itself.
    TextSpan spanOf(std::size_t first, std::size_t last) const;
    TextSpan spanOf(std::string_view part) const;

    /// The place of a part of the texts as written.
    Place placeInFile(std::size_t offset, std::size_t length) const {
        return sources_.placeOf({offset, length});
    }

    /// A note on each variable that a part of the prepared text came from, a few at most.
    std::vector<Note> variableNotes(std::string_view part) const;

    std::size_t offsetOf(std::string_view part) const {
        return static_cast<std::size_t>(part.data() - prepared_.data());
    }

    const Parser::TextMap& map() const { return map_; }

    /// The script and the files that it includes.
    const ScriptSources& sources() const { return sources_; }

private:
    void prepare(const std::map<std::string, std::string>& variables);
    void placeValues();
    const std::string& nameOf(std::size_t variable) const;

    ScriptSources sources_;
    std::vector<ParameterValue> parameters_;
    std::string prepared_;
    Parser::TextMap map_;
};

}  // namespace Strict
