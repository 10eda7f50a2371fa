#pragma once

#include <cstdint>

namespace Util {

/// The number that `bytes` form, most significant byte first, modulo 2^64.
template <class Bytes>
constexpr std::uint64_t bigEndian(const Bytes& bytes) {
    std::uint64_t number = 0;
    for (const std::uint8_t byte : bytes) number = number << 8U | byte;
    return number;
}

}  // namespace Util
