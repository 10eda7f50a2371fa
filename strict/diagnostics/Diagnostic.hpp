#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "strict/diagnostics/Kinds.hpp"

namespace Strict {

/// The line of a file that includes another one.
struct IncludingLine {
    std::string file;
    std::size_t line = 0;
    bool operator==(const IncludingLine&) const = default;
};

/// A place in a file as its author wrote it.
struct Place {
    std::string file;
    std::size_t line = 0;         ///< counted from 1; 0 for the file as a whole
    std::size_t column = 0;       ///< in characters, counted from 1; 0 for the whole line
    std::string excerpt = {};     ///< the line, or the part of a long one around the column
    std::size_t caret = 0;        ///< characters of the excerpt before the column
    std::size_t caretLength = 0;  ///< characters that the place covers, of the excerpt's
    /// Of a script that is included: the line that includes it, and so on up to the script itself.
    std::vector<IncludingLine> includedFrom = {};
};

/// What a diagnostic adds to its text.
struct Note {
    std::string text;
    std::optional<Place> place = {};
};

/// What an editor can write in place of a word, as a hint advises.
struct Correction {
    std::string wrong;               ///< the word, with which the place of the diagnostic begins
    std::vector<std::string> right;  ///< one or several that it may be meant to be
};

/// One thing that is wrong, or may be.
struct Diagnostic {
    std::optional<Kind> kind;  ///< none for a note, which adds to the diagnostics before it
    std::string text;
    std::optional<Place> place = {};
    std::string hint = {};  ///< what to do, shown beside the caret; may be empty
    std::vector<Note> notes = {};
    std::uint64_t count = 1;  ///< findings that it sums up
    /// What it counts as unless the user says otherwise, where that is not what its kind does.
    std::optional<Severity> usual = {};
    std::optional<Correction> correction = {};  ///< where the hint is one
};

/// A diagnostic, and what it counts as.
struct Judged {
    Diagnostic diagnostic;
    Severity severity;
};

/// Takes diagnostics in the order in which they come up.
class DiagnosticSink {
public:
    DiagnosticSink() = default;
    virtual ~DiagnosticSink() = default;
    DiagnosticSink(const DiagnosticSink&) = delete;
    DiagnosticSink& operator=(const DiagnosticSink&) = delete;

    virtual void take(const Diagnostic& diagnostic) = 0;

    /// Takes note of `count` more diagnostics of a kind of which more came up than are shown. Their
    /// texts are not made.
    virtual void countMore(Kind kind, std::uint64_t count) = 0;
};

}  // namespace Strict
