#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "strict/diagnostics/Diagnostic.hpp"

namespace Strict {

/// Keeps diagnostics until it is clear who is to take them.
class KeptDiagnostics final : public DiagnosticSink {
public:
    void take(const Diagnostic& diagnostic) override { diagnostics_.push_back(diagnostic); }
    void countMore(Kind kind, std::uint64_t count) override { more_.emplace_back(kind, count); }

    bool isEmpty() const { return diagnostics_.empty() && more_.empty(); }

    void pass(DiagnosticSink& other) const {
        for (const Diagnostic& diagnostic : diagnostics_) other.take(diagnostic);
        for (const auto& [kind, count] : more_) other.countMore(kind, count);
    }

private:
    std::vector<Diagnostic> diagnostics_;
    std::vector<std::pair<Kind, std::uint64_t>> more_;
};

}  // namespace Strict
