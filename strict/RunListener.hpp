#pragma once

#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "classic/ClassicWords.hpp"
#include "facts/Listener.hpp"
#include "strict/diagnostics/FactWords.hpp"
#include "strict/script/StatementReports.hpp"

namespace Strict {

class Provenance;

/// Turns the facts of a run into diagnostics of the statement that runs, and passes on what PRINT_*
/// statements print.
class RunListener final : public Facts::Listener {
public:
    /// @param reports  at the statement that runs
    /// @param provenance  of the images of the run; null where there are none
    /// @param printed     where the output of PRINT_* statements goes; null where there are none
    RunListener(StatementReports& reports, const Provenance* provenance,
                Classic::ClassicWords* printed, Circumstances circumstances)
        : reports_(&reports),
          provenance_(provenance),
          printed_(printed),
          circumstances_(std::move(circumstances)) {}

    void hear(const Facts::Fact& fact) override;

    /// The next statement is about to run.
    void enter() { hasRefused_ = false; }

    /// Something that the statement asked for was not done.
    bool hasRefused() const { return hasRefused_; }

private:
    void reportField(const Facts::FieldFact& fact);
    std::vector<Note> notesOn(const Facts::FieldFact& fact) const;
    std::vector<Note> notesOn(const Facts::Fact& fact) const;

    StatementReports* reports_;
    const Provenance* provenance_;
    Classic::ClassicWords* printed_;
    Circumstances circumstances_;
    bool hasRefused_ = false;
    std::set<std::string, std::less<>> readableKeys_;  ///< that were reported
};

}  // namespace Strict
