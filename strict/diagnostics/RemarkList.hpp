#pragma once

#include <vector>

#include "inspect/Info.hpp"
#include "strict/diagnostics/Allowance.hpp"
#include "strict/diagnostics/Policy.hpp"

namespace Strict {

/// Collects diagnostics, as the policy judges them, for outputs that include them: the first ones
/// of each kind, see Allowance.
class RemarkList final : public DiagnosticSink {
public:
    explicit RemarkList(const Policy& policy) : policy_(&policy) {}

    void take(const Diagnostic& diagnostic) override;
    void countMore(Kind kind, std::uint64_t count) override;

    /// Adds how many diagnostics of which kind are left out, if there are any. The last call.
    void finish();

    bool hasErrors() const { return hasErrors_; }
    std::vector<Inspect::Remark> remarks;

private:
    const Policy* policy_;
    Allowance allowance_;
    bool hasErrors_ = false;
};

}  // namespace Strict
