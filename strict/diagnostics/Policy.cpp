#include "strict/diagnostics/Policy.hpp"

#include <optional>
#include <vector>

#include "strict/diagnostics/Suggestion.hpp"

namespace Strict {

std::string Policy::set(std::string_view name, Severity severity) {
    const std::optional<Kind> kind = kindCalled(name);
    if (!kind) {
        std::vector<std::string> names;
        names.reserve(kinds().size());
        for (const KindRow& known : kinds()) names.emplace_back(known.name);
        return "there is no diagnostic " + std::string(name) + didYouMean(name, names);
    }
    if (rowOf(*kind).isFixed && severity != Severity::Error)
        return std::string(name) + " is always an error";
    set(*kind, severity);
    return {};
}

Severity Policy::severityOf(const Diagnostic& diagnostic) const {
    if (!diagnostic.kind) return Severity::Note;
    const Kind kind = *diagnostic.kind;
    return severityOf(kind, diagnostic.usual.value_or(rowOf(kind).severity));
}

/// @param usual  without a choice of the user
Severity Policy::severityOf(Kind kind, Severity usual) const {
    const auto changed = changed_.find(kind);
    const Severity severity = changed != changed_.end() ? changed->second : usual;
    return severity == Severity::Warning && areWarningsErrors_ ? Severity::Error : severity;
}

}  // namespace Strict
