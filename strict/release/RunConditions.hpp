#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace Strict {

/// What can change a run beside its script, its variables and its inputs.
struct RunConditions {
    std::string version;                     ///< of this program, for people
    std::optional<std::int64_t> sourceDate;  ///< of SOURCE_DATE_EPOCH
    std::optional<std::string> timestamp;    ///< the same as RFC 3339 has it
    /// Kinds of diagnostics that count less than they usually do, and what they count as.
    std::map<std::string, std::string> relaxed;
};

}  // namespace Strict
