#pragma once

#include <cstdint>

#include "buffer/ImageSpace.hpp"

namespace Strict {

/// Addresses that an image may have.
inline constexpr std::uint64_t addressCount = std::uint64_t{1} << 32U;

/// An image may have all addresses. One of 256 MiB and more is sparse, since few of them are full;
/// the gaps of a shorter one cost little.
inline constexpr Buffer::ImageSpace imageSpace{addressCount + 1, std::uint64_t{1} << 28U};

}  // namespace Strict
