#pragma once

#include <deque>
#include <memory>
#include <vector>

#include "inspect/RunRecord.hpp"
#include "parser/commands/CmdApi.hpp"
#include "strict/OutputSet.hpp"
#include "strict/Provenance.hpp"
#include "strict/Run.hpp"
#include "strict/ScriptCheck.hpp"
#include "strict/ScriptText.hpp"

namespace Strict {

/// A run that has ended well, borrowed.
struct Ran {
    const RunOptions* options;
    const ScriptText* script;
    const std::deque<std::unique_ptr<Parser::WrapperLib::CmdApi>>* statements;
    const std::vector<ScriptCheck::Range>* ranges;  ///< of the statements, in the prepared text
    const Parser::WrapperLib::CmdContext* context;
    const Provenance* provenance;
    OutputSet* files;  ///< which keeps digests
};

/// What went into the run and what came out of it. The remarks are left to the caller, and the
/// images are those of the run.
///
/// @param withLines  whether to find out which line of an input file gave which address, which
///                   reads the file once more
Inspect::RunRecord recordOf(const Ran& ran, bool withLines);

}  // namespace Strict
