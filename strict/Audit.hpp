#pragma once

#include "parser/commands/CmdApi.hpp"
#include "strict/RunListener.hpp"

namespace Strict {

/// Checks a statement against the images that it is about to work on: each of its areas must lie in
/// one of them.
void auditBefore(const Parser::WrapperLib::CmdApi& statement,
                 const Parser::WrapperLib::CmdContext& context, RunListener& listener);

/// Checks what a statement has made: an image from a file must have data.
void auditAfter(const Parser::WrapperLib::CmdApi& statement,
                const Parser::WrapperLib::CmdContext& context, RunListener& listener);

}  // namespace Strict
