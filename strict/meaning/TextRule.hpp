#pragma once

#include "strict/meaning/Step.hpp"

namespace Strict {

/// What is odd about a statement that has taken a file without records as raw bytes, all of which
/// are text; empty if it has not.
std::string unknownTextOf(const Parser::Statement& statement,
                          const Parser::WrapperLib::CmdContext& context,
                          const Provenance& provenance);

/// `unknown-text`: FROM_FILE found no records in a file and took its bytes as they are, and all of
/// them are text: the file may be of a text format that nobody knows here. FROM_FILE_BINARY says
/// that it is meant. The statement has run.
void checkUnknownText(const Step& step);

}  // namespace Strict
