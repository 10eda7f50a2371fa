#pragma once

#include <string>

#include "inspect/RunRecord.hpp"
#include "strict/release/RunConditions.hpp"

namespace Strict {

/// The outputs of a run, what they are made of, and which depends on which: a bill of materials as
/// CycloneDX 1.5 has it (https://cyclonedx.org/docs/1.5/json/), as JSON.
///
/// @param record  with the sources of its outputs
std::string billOfMaterialsOf(const Inspect::RunRecord& record, const RunConditions& conditions);

}  // namespace Strict
