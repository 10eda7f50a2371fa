#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

/// Small files of the kernel of Linux, under /proc and /sys.
namespace Platform {

constexpr std::uint64_t unknownNumber = std::numeric_limits<std::uint64_t>::max();

/// The first 4096 bytes of a file; nothing if it cannot be read.
std::string kernelText(const std::string& path);

/// The first decimal number after `label`, or `unknownNumber`.
std::uint64_t numberAfter(std::string_view text, std::string_view label);

}  // namespace Platform
