#pragma once

#include "buffer/Area.hpp"
#include "parser/commands/CmdContext.hpp"
#include "parser/grammar/Statement.hpp"

namespace Strict {

/// Where a statement that is about to lay a filler changes the bytes that an image is read and
/// written with: addresses that nothing wrote, and whose filler is another one now. They are
/// ascending. None for another statement.
Buffer::AreaList fillerChanges(const Parser::Statement& statement,
                               const Parser::WrapperLib::CmdContext& context);

}  // namespace Strict
