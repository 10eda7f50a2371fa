#pragma once

#include "parser/commands/CmdWriteFile.hpp"
#include "parser/grammar/Statement.hpp"

namespace Strict {

/// The format of the file that a WRITE_FILE writes, the usual one if it names none.
const Parser::WrapperLib::ExportFormat& outputFormatOf(const Parser::Statement& statement);

}  // namespace Strict
