#include "strict/diagnostics/PendingList.hpp"

#include "strict/diagnostics/Allowance.hpp"

namespace Strict {

bool PendingList::wants(Kind kind) {
    return ++counts_[kind] <= Allowance::perKind;
}

void PendingList::moveTo(DiagnosticSink& sink) {
    for (const Diagnostic& diagnostic : list_) sink.take(diagnostic);
    for (const auto& [kind, count] : counts_)
        if (count > Allowance::perKind) sink.countMore(kind, count - Allowance::perKind);
    clear();
}

void PendingList::clear() {
    list_.clear();
    counts_.clear();
}

}  // namespace Strict
