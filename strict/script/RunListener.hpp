#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "classic/ClassicWords.hpp"
#include "facts/Listener.hpp"
#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/script/ScriptText.hpp"

namespace Strict {

/// Turns the facts of a run into diagnostics with their places in the script, and passes on what
/// PRINT_* statements print.
class RunListener final : public Facts::Listener {
public:
    /// Why the last attempt to open or create a file failed, in the system's words; empty if the
    /// system gave no reason.
    using Reason = std::function<std::string(std::string_view path)>;

    /// A statement makes something of that name.
    using IsMade = std::function<bool(std::string_view name)>;

    /// @param printed  where the output of PRINT_* statements goes
    RunListener(const ScriptText& script, DiagnosticSink& sink, Classic::ClassicWords& printed,
                Reason reason, IsMade isMade)
        : script_(&script),
          sink_(&sink),
          printed_(&printed),
          reason_(std::move(reason)),
          isMade_(std::move(isMade)) {}

    /// For files that are read outside any script.
    RunListener(DiagnosticSink& sink, Reason reason) : sink_(&sink), reason_(std::move(reason)) {}

    /// The statement [`first`, `last`) of the prepared text is about to run.
    void enter(std::size_t first, std::size_t last) {
        first_ = first;
        last_ = last;
    }

    void hear(const Facts::Fact& fact) override;

    /// Reports that an area of the statement does not lie in any of the images `names`.
    void reportOutside(std::uint64_t start, std::uint64_t length, const std::string& images);

    /// Reports something about the argument of the statement whose action has one of the traces.
    void report(Kind kind, std::string text, const std::vector<std::string_view>& traces,
                std::string hint = {}, std::uint64_t count = 1);

    /// Reports something about an image that the statement names.
    void reportName(Kind kind, std::string_view name, std::string text, std::string hint,
                    std::vector<Note> notes);

    /// The place of the statement that runs.
    Place statementPlace() const { return script_->placeOf(first_, last_); }

private:
    void reportOverlap(const Facts::OverlapRefused& fact);
    void reportOpen(std::string_view file);
    void reportField(const Facts::FieldFact& fact);

    const ScriptText* script_ = nullptr;  ///< null outside any script
    DiagnosticSink* sink_;
    Classic::ClassicWords* printed_ = nullptr;
    Reason reason_;
    IsMade isMade_;
    std::size_t first_ = 0;
    std::size_t last_ = 0;
};

}  // namespace Strict
