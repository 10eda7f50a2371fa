#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace Strict {

/// The seconds since 1970, in UTC, of the environment variable SOURCE_DATE_EPOCH
/// (https://reproducible-builds.org/specs/source-date-epoch/). Nothing if it is not set, or not a
/// number of seconds up to the year 9999: a run gives the same bytes whenever it happens.
std::optional<std::int64_t> sourceDateSeconds();

/// That time as outputs give the time of their making.
std::optional<std::string> sourceDate();

/// That time as RFC 3339 has it, such as 2026-11-26T18:50:00Z.
std::optional<std::string> sourceTimestamp();

}  // namespace Strict
