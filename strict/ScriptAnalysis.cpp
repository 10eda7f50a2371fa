#include "strict/ScriptAnalysis.hpp"

#include <utility>

#include "strict/ProgramFiles.hpp"
#include "strict/files/RunFiles.hpp"
#include "strict/meaning/MeaningCheck.hpp"
#include "strict/record/Provenance.hpp"
#include "strict/script/ScriptCheck.hpp"
#include "strict/script/StatementReports.hpp"

namespace Strict {

/// The order is that of a run.
ScriptAnalysis::ScriptAnalysis(const RunOptions& options, std::string text,
                               ScriptReading::EditedText edited, DiagnosticSink& sink) {
    RunFiles files(RunFiles::Mode::Memory);
    files.name(options.script, FileRole::Script);
    ScriptReading reading(options, files, sink, std::move(edited));
    owned_ = reading.prepare(std::move(text));
    text_ = owned_.get();
    if (text_ == nullptr) return;
    parsed_.emplace(*text_);
    ScriptCheck(*text_, sink).check(*parsed_);
    if (!parsed_->isWhole()) return;
    reading.checkVariables(*text_);
    program_.emplace(parsed_->takeProgram(std::move(owned_)));
    StatementReports reports(text_, sink);
    const Provenance provenance(reports);
    nameFilesOf(*program_, true, files, reports);
    MeaningCheck(*program_, provenance, sink).checkBefore();
}

}  // namespace Strict
