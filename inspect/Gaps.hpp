#pragma once

#include <cstdint>

namespace Inspect {

/// Bytes of gaps, all together, that count as data without a question, in files and in digests of
/// images.
inline constexpr std::uint64_t widestGaps = std::uint64_t{64} << 20U;

}  // namespace Inspect
