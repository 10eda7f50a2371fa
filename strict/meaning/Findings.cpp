#include "strict/meaning/Findings.hpp"

#include <utility>

namespace Strict {

void Findings::report(Diagnostic diagnostic, std::string_view part, std::size_t about) {
    const bool isNew =
        reported_.emplace(diagnostic.kind.value(), script_->offsetOf(part), about).second;
    if (!isNew) return;
    diagnostic.place = script_->placeOf(part);
    std::vector<Note> notes = script_->variableNotes(part);
    notes.insert(notes.end(), diagnostic.notes.begin(), diagnostic.notes.end());
    diagnostic.notes = std::move(notes);
    sink_->take(diagnostic);
}

Note Findings::note(std::string text, std::string_view part) const {
    return {std::move(text), script_->placeOf(part)};
}

}  // namespace Strict
