#pragma once

#include <map>
#include <string>
#include <string_view>

#include "strict/diagnostics/Diagnostic.hpp"

namespace Strict {

/// What each kind of diagnostic counts as in one run.
class Policy {
public:
    /// Lets diagnostics of the kind called `name` count as `severity`.
    ///
    /// @return an explanation if there is no such kind or it cannot be changed, or an empty text
    std::string set(std::string_view name, Severity severity);

    /// The same for a kind that can be changed.
    void set(Kind kind, Severity severity) { changed_.insert_or_assign(kind, severity); }

    /// Lets every warning count as an error (`--werror`).
    void makeWarningsErrors() { areWarningsErrors_ = true; }

    Severity severityOf(Kind kind) const { return severityOf(kind, rowOf(kind).severity); }

    /// A diagnostic without a kind is a note.
    Severity severityOf(const Diagnostic& diagnostic) const;

private:
    Severity severityOf(Kind kind, Severity usual) const;

    std::map<Kind, Severity> changed_;
    bool areWarningsErrors_ = false;
};

}  // namespace Strict
