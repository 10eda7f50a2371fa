#pragma once

#include <map>
#include <span>
#include <string>
#include <string_view>

#include "strict/Diagnostic.hpp"

namespace Strict {

/// A kind of diagnostic and what it counts as unless the user says otherwise.
struct Kind {
    const char* name;
    Severity severity;
    bool isFixed;  ///< always an error: damage, syntax and the file system
};

/// All kinds, in the order of the manual.
std::span<const Kind> kinds();

/// What each kind of diagnostic counts as in one run.
class Policy {
public:
    /// Lets diagnostics called `name` count as `severity`.
    ///
    /// @return an explanation if there is no such kind or it cannot be changed, or an empty text
    std::string set(std::string_view name, Severity severity);

    /// Lets every warning count as an error (`--werror`).
    void makeWarningsErrors() { areWarningsErrors_ = true; }

    Severity severityOf(std::string_view name) const;

private:
    std::map<std::string, Severity, std::less<>> changed_;
    bool areWarningsErrors_ = false;
};

}  // namespace Strict
