#pragma once

#include "parser/commands/CmdContext.hpp"
#include "parser/grammar/Statement.hpp"
#include "strict/meaning/Findings.hpp"
#include "strict/meaning/Images.hpp"
#include "strict/meaning/StoredValues.hpp"
#include "strict/record/Provenance.hpp"

namespace Strict {

/// A statement, and what is known when it is about to run. A rule looks at one and reports what it
/// finds; no rule knows another.
struct Step {
    const Parser::Statement& statement;
    const Images& images;
    const StoredValues& values;
    Findings& findings;
    /// With the images themselves; null before the run.
    const Parser::WrapperLib::CmdContext* context;
    /// Of the images of `context`; null before the run.
    const Provenance* provenance;
};

}  // namespace Strict
