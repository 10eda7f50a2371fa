#include "strict/diagnostics/RemarkList.hpp"

#include <utility>

namespace Strict {

void RemarkList::take(const Diagnostic& diagnostic) {
    const Severity severity = policy_->severityOf(diagnostic);
    if (severity == Severity::Ignored) return;
    hasErrors_ = hasErrors_ || severity == Severity::Error;
    if (!allowance_.admits(diagnostic)) return;
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

void RemarkList::countMore(Kind kind, std::uint64_t count) {
    const Severity severity = policy_->severityOf(kind);
    hasErrors_ = hasErrors_ || severity == Severity::Error;
    if (severity != Severity::Ignored) allowance_.countMore(kind, count);
}

void RemarkList::finish() {
    const std::string rest = allowance_.restText();
    if (!rest.empty()) remarks.push_back({wordFor(Severity::Note), "", rest, "", 0, 0, ""});
}

}  // namespace Strict
