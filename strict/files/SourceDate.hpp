#pragma once

#include <optional>
#include <string>

namespace Strict {

/// The time that outputs give as that of their making: that of the environment variable
/// SOURCE_DATE_EPOCH, in UTC (https://reproducible-builds.org/specs/source-date-epoch/). Nothing
/// if it is not set, or not a number of seconds up to the year 9999: a run gives the same bytes
/// whenever it happens.
std::optional<std::string> sourceDate();

}  // namespace Strict
