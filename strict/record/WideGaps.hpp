#pragma once

#include "parser/commands/CmdContext.hpp"
#include "parser/grammar/Statement.hpp"
#include "strict/record/Provenance.hpp"
#include "strict/script/StatementReports.hpp"

namespace Strict {

/// Reports that a statement is about to fill a wide distance that nobody has named: more than 64
/// MiB of addresses without a byte or a filler into a file, or a filler under as many of them in an
/// image whose range two areas of a file make. An image whose range the script gives may have any
/// filler.
///
/// @param reports    of that statement
/// @param isScript   somebody wrote it: advice may name options of the language
void checkWideGaps(const Parser::Statement& statement,
                   const Parser::WrapperLib::CmdContext& context, const Provenance& provenance,
                   StatementReports& reports, bool isScript);

}  // namespace Strict
