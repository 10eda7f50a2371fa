#include "strict/diagnostics/Allowance.hpp"

#include "inspect/Words.hpp"

namespace Strict {

bool Allowance::admits(const Diagnostic& diagnostic) {
    if (!diagnostic.kind && !diagnostic.place) return true;
    std::uint64_t& shown = shown_[diagnostic.kind];
    if (shown < perKind + (diagnostic.count > 1 ? 1 : 0)) {
        ++shown;
        return true;
    }
    rest_[diagnostic.kind] += diagnostic.count;
    return false;
}

std::string Allowance::restText() const {
    std::string text;
    for (const auto& [kind, count] : rest_)
        text.append(text.empty() ? "not shown: " : ", ")
            .append(Inspect::grouped(count))
            .append(" more ")
            .append(kind ? std::string("of ") + nameOf(*kind) : "notes");
    return text;
}

}  // namespace Strict
