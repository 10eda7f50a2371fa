#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/script/ScriptText.hpp"

namespace Strict {

/// What the rules of meaning have found. They look at a statement before the run, when not all of
/// its images are known, and again when it is about to run; what was found then is not reported a
/// second time.
class Findings {
public:
    Findings(const ScriptText& script, DiagnosticSink& sink) : script_(&script), sink_(&sink) {}

    /// Reports something about a part of the script's text, which is not empty.
    ///
    /// @param about  distinguishes findings of one kind about one part
    void report(Kind kind, std::string text, std::string_view part, std::string hint = {},
                std::vector<Note> notes = {}, std::size_t about = 0) {
        report({kind, std::move(text), std::nullopt, std::move(hint), std::move(notes)}, part,
               about);
    }
    void report(Diagnostic diagnostic, std::string_view part, std::size_t about = 0);

    /// A note about a part of the script's text.
    Note note(std::string text, std::string_view part) const;

    /// Any part of the text is a variable's value.
    bool isFromVariable(std::string_view part) const {
        return !script_->variableNotes(part).empty();
    }

private:
    const ScriptText* script_;
    DiagnosticSink* sink_;
    std::set<std::tuple<Kind, std::size_t, std::size_t>> reported_;  ///< kind, offset, about
};

}  // namespace Strict
