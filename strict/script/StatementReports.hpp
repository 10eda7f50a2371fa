#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "parser/grammar/Statement.hpp"
#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/script/ScriptText.hpp"

namespace Strict {

/// What the statement that runs has to report, at the part of it that is to blame. Outside any
/// script, diagnostics have no place.
class StatementReports {
public:
    /// @param script  null outside any script
    StatementReports(const ScriptText* script, DiagnosticSink& sink)
        : script_(script), sink_(&sink) {}

    /// The statement is about to run.
    void enter(const Parser::Statement& statement) { statement_ = statement; }

    /// Reports something about the last part with one of the roles, or about the statement.
    ///
    /// @param count  findings that it sums up
    void report(Kind kind, std::string text, Parser::Roles roles, std::string hint = {},
                std::vector<Note> notes = {}, std::uint64_t count = 1);

    /// Reports something about a part of the statement.
    void reportPart(Kind kind, std::string text, const Parser::Part& part, std::string hint = {},
                    std::vector<Note> notes = {});

    /// Reports something about a name that the statement uses, or about the statement.
    void reportName(Kind kind, std::string_view name, std::string text, std::string hint = {},
                    std::vector<Note> notes = {});

    /// Reports something at a place in an input file, with a note where the script names it.
    void reportInput(Diagnostic diagnostic);

    /// A note about the statement as a whole.
    void note(std::string text);

    /// The place of the statement that runs; a script is there.
    Place statementPlace() const { return script_->placeOf(trimmed()); }

    /// The one that runs.
    const Parser::Statement& statement() const { return statement_; }

    /// The place of a part of the script.
    Place placeOf(std::string_view part) const { return script_->placeOf(part); }

    bool hasScript() const { return script_ != nullptr; }

private:
    /// The statement without the white space at its end.
    std::string_view trimmed() const;
    void reportAt(std::string_view part, Diagnostic diagnostic);

    const ScriptText* script_;
    DiagnosticSink* sink_;
    Parser::Statement statement_;
};

}  // namespace Strict
