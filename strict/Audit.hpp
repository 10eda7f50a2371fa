#pragma once

#include "parser/commands/CmdContext.hpp"
#include "parser/grammar/Statement.hpp"
#include "strict/record/Provenance.hpp"
#include "strict/script/StatementReports.hpp"

namespace Strict {

/// Checks a statement against the images that it is about to work on: each of its areas must lie in
/// one of them, and what a CRC or hash covers must have been given a byte.
void auditBefore(const Parser::Statement& statement, const Parser::WrapperLib::CmdContext& context,
                 const Provenance& provenance, StatementReports& reports);

}  // namespace Strict
