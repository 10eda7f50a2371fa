#pragma once

#include <vector>

#include "inspect/Info.hpp"
#include "strict/diagnostics/Policy.hpp"

namespace Strict {

/// Collects diagnostics, as the policy judges them, for outputs that include them.
class RemarkList final : public DiagnosticSink {
public:
    explicit RemarkList(const Policy& policy) : policy_(&policy) {}

    void take(const Diagnostic& diagnostic) override;

    bool hasErrors() const { return hasErrors_; }
    std::vector<Inspect::Remark> remarks;

private:
    const Policy* policy_;
    bool hasErrors_ = false;
};

}  // namespace Strict
