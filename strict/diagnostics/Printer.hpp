#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "strict/diagnostics/Allowance.hpp"
#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/diagnostics/Policy.hpp"

namespace Strict {

enum class DiagnosticFormat : unsigned char { Text, Json };

/// Applies the policy of a run to diagnostics and prints them, as text for people or as one JSON
/// object a line. Of those of a kind the first ones are printed, see Allowance.
class Printer final : public DiagnosticSink {
public:
    /// @param out      borrowed; flushed after each diagnostic
    /// @param isQuiet  prints errors only
    Printer(std::ostream& out, const Policy& policy, DiagnosticFormat format, bool hasColor,
            bool isQuiet)
        : out_(&out), policy_(&policy), format_(format), hasColor_(hasColor), isQuiet_(isQuiet) {}

    void take(const Diagnostic& diagnostic) override;
    void countMore(Kind kind, std::uint64_t count) override;

    /// Prints how many diagnostics of which kind were not printed, if there are any. The last call.
    void finish();

    /// Hands every diagnostic to another sink as well, which is borrowed.
    void copyTo(DiagnosticSink& other) { other_ = &other; }

    /// All of them, printed or not.
    std::uint64_t errors() const { return errors_; }

    /// The kinds of those that were printed, in their order.
    std::vector<Kind> printedKinds() const;

    const Policy& policy() const { return *policy_; }

private:
    std::string textOf(const Diagnostic& diagnostic, Severity severity) const;
    std::string textOf(const Place& place, const std::string& hint) const;
    std::string textOf(const std::vector<IncludingLine>& lines) const;
    static std::string jsonOf(const Diagnostic& diagnostic, Severity severity);
    bool isShown(Severity severity) const;
    void print(const Diagnostic& diagnostic, Severity severity);
    const char* color(const char* code) const { return hasColor_ ? code : ""; }

    std::ostream* out_;
    const Policy* policy_;
    DiagnosticFormat format_;
    bool hasColor_;
    bool isQuiet_;
    Allowance allowance_;
    std::uint64_t errors_ = 0;
    DiagnosticSink* other_ = nullptr;
};

}  // namespace Strict
