#pragma once

#include "inspect/RunRecord.hpp"
#include "parser/grammar/Statement.hpp"

namespace Strict {

/// What a NEW_CRC computes.
Inspect::Algorithm crcOf(const Parser::Statement& statement);

/// What a NEW_HASH computes.
Inspect::Algorithm hashOf(const Parser::Statement& statement);

}  // namespace Strict
