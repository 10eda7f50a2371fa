#pragma once

#include <string>
#include <vector>

#include "strict/diagnostics/Diagnostic.hpp"

namespace Strict {

/// "file:line:column: ", as far as the place goes.
std::string prefixOf(const Place& place);

/// "included from app.tsn:3".
std::string wordsFor(const IncludingLine& line);

/// The lines that lead to a place.
const std::vector<IncludingLine>& linesOf(const std::optional<Place>& place);

/// The notes of a diagnostic in their order, and before them and after each the lines that include
/// the file with its place, unless they are those of the diagnostic.
std::vector<Note> allNotesOf(const Diagnostic& diagnostic);

/// The text of a diagnostic, and what to do after it: "no image is called @App; did you mean @app?"
std::string adviceOf(const Diagnostic& diagnostic);

}  // namespace Strict
