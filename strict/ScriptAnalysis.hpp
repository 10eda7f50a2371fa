#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "strict/RunOptions.hpp"
#include "strict/ScriptReading.hpp"
#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/script/ParsedScript.hpp"
#include "strict/script/Program.hpp"
#include "strict/script/ScriptText.hpp"

namespace Strict {

/// A script that somebody is writing: what `check` finds before the first statement runs, and the
/// statements as far as they parse.
class ScriptAnalysis {
public:
    /// @param options  of which the name of the script and the variables count
    /// @param text     of the script, as `ScriptReading::prepare` takes it
    /// @param edited   the texts of files that are included, where an editor has them
    /// @param sink     takes what is wrong
    ScriptAnalysis(const RunOptions& options, std::string text, ScriptReading::EditedText edited,
                   DiagnosticSink& sink);

    /// Null after a diagnostic; the rest has to do with a text.
    const ScriptText* text() const { return text_; }

    /// Those that parse, with what executes each of them.
    const Parser::StatementList& statements() const {
        return program_ ? program_->statements() : parsed_->statements();
    }
    const Program::Commands& commands() const {
        return program_ ? program_->commands() : parsed_->commands();
    }

    /// What does not parse, in the order of the text.
    const std::vector<BrokenText>& broken() const { return parsed_->broken(); }

private:
    const ScriptText* text_ = nullptr;
    std::unique_ptr<const ScriptText> owned_;  ///< until the program has it
    std::optional<ParsedScript> parsed_;       ///< of a text
    std::optional<Program> program_;           ///< of a text that parses as a whole
};

}  // namespace Strict
