#pragma once

#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "strict/diagnostics/Allowance.hpp"
#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/diagnostics/Policy.hpp"

namespace Strict {

enum class DiagnosticFormat : unsigned char {
    Text,   ///< for people
    Json,   ///< one object a line
    Sarif,  ///< one document, see SarifLog.hpp
    Github  ///< one command a line, see WorkflowCommand.hpp
};

/// Applies the policy of a run to diagnostics and prints them. Of those of a kind the first ones
/// are printed, see Allowance.
class Printer final : public DiagnosticSink {
public:
    /// @param out      borrowed; flushed after each diagnostic
    /// @param isQuiet  prints errors only
    Printer(std::ostream& out, const Policy& policy, DiagnosticFormat format, bool hasColor,
            bool isQuiet)
        : out_(&out), policy_(&policy), format_(format), hasColor_(hasColor), isQuiet_(isQuiet) {}

    void take(const Diagnostic& diagnostic) override;
    void countMore(Kind kind, std::uint64_t count) override;

    /// Names the file that diagnostics without a place are about, for a format that demands one.
    void setSubject(std::string path) { subject_ = std::move(path); }

    /// Prints how many diagnostics of which kind were not printed, if there are any, and what is
    /// printed as a whole. The last call.
    ///
    /// @param exitCode  of the program
    void finish(int exitCode = 0);

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
    std::string lineFor(const Diagnostic& diagnostic, Severity severity) const;
    bool isShown(Severity severity) const;
    void print(const Diagnostic& diagnostic, Severity severity);
    const char* color(const char* code) const { return hasColor_ ? code : ""; }

    std::ostream* out_;
    const Policy* policy_;
    DiagnosticFormat format_;
    bool hasColor_;
    bool isQuiet_;
    std::string subject_;
    std::vector<Judged> judged_;  ///< what is printed as a whole
    Allowance allowance_;
    std::uint64_t errors_ = 0;
    DiagnosticSink* other_ = nullptr;
};

}  // namespace Strict
