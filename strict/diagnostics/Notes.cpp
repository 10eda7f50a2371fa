#include "strict/diagnostics/Notes.hpp"

namespace Strict {

std::string prefixOf(const Place& place) {
    std::string text = place.file + ":";
    if (place.line != 0) text += std::to_string(place.line) + ":";
    if (place.column != 0) text += std::to_string(place.column) + ":";
    return text + " ";
}

std::string wordsFor(const IncludingLine& line) {
    return "included from " + line.file + ":" + std::to_string(line.line);
}

const std::vector<IncludingLine>& linesOf(const std::optional<Place>& place) {
    static const std::vector<IncludingLine> none;
    return place ? place->includedFrom : none;
}

std::vector<Note> allNotesOf(const Diagnostic& diagnostic) {
    std::vector<Note> notes;
    const auto addLines = [&notes](const std::vector<IncludingLine>& lines) {
        for (const IncludingLine& line : lines)
            notes.push_back({wordsFor(line), Place{.file = line.file, .line = line.line}});
    };
    addLines(linesOf(diagnostic.place));
    for (const Note& note : diagnostic.notes) {
        notes.push_back(note);
        if (linesOf(note.place) != linesOf(diagnostic.place)) addLines(linesOf(note.place));
    }
    return notes;
}

std::string adviceOf(const Diagnostic& diagnostic) {
    return diagnostic.hint.empty() ? diagnostic.text : diagnostic.text + "; " + diagnostic.hint;
}

}  // namespace Strict
