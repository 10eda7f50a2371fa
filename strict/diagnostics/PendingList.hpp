#pragma once

#include <cstddef>
#include <map>
#include <utility>
#include <vector>

#include "strict/diagnostics/Diagnostic.hpp"

namespace Strict {

/// Diagnostics that may yet be dropped. As many of a kind are kept as are shown at most, and the
/// others are counted, so that the list stays short whatever the text is that they are about.
class PendingList {
public:
    /// Counts a diagnostic of that kind. False if it is not worth making: `add` is not called then.
    bool wants(Kind kind);

    void add(Diagnostic diagnostic) { list_.push_back(std::move(diagnostic)); }

    /// Hands all of them on, in their order, and drops them.
    void moveTo(DiagnosticSink& sink);

    void clear();

private:
    std::vector<Diagnostic> list_;
    std::map<Kind, std::size_t> counts_;
};

}  // namespace Strict
