#pragma once

#include <optional>
#include <string>

#include "inspect/RunRecord.hpp"
#include "strict/release/RunConditions.hpp"

namespace Strict {

/// The provenance of the outputs of a run: a Statement v1 of the in-toto attestation framework
/// (https://in-toto.io/Statement/v1) whose predicate is SLSA provenance v1
/// (https://slsa.dev/provenance/v1), as JSON. Its build type is described in the book,
/// running/release.md.
///
/// It has neither an identifier of the run nor the time when it happened, so it is the same
/// whenever a run is repeated. Nothing if there is no output, which it would be about.
std::optional<std::string> provenanceStatementOf(const Inspect::RunRecord& record,
                                                 const RunConditions& conditions);

}  // namespace Strict
