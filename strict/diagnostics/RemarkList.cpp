#include "strict/diagnostics/RemarkList.hpp"

#include <utility>

namespace Strict {

void RemarkList::take(const Diagnostic& diagnostic) {
    const Severity severity = policy_->severityOf(diagnostic);
    if (severity == Severity::Ignored) return;
    hasErrors_ = hasErrors_ || severity == Severity::Error;
    Inspect::Remark remark;
    remark.severity = wordFor(severity);
    if (diagnostic.kind) remark.name = nameOf(*diagnostic.kind);
    remark.text = diagnostic.text;
    remark.hint = diagnostic.hint;
    if (diagnostic.place) {
        remark.file = diagnostic.place->file;
        remark.line = diagnostic.place->line;
        remark.column = diagnostic.place->column;
    }
    remarks.push_back(std::move(remark));
}

}  // namespace Strict
