#pragma once

#include <cstdint>
#include <cstring>

/// Eight bytes at a time. Of this folder alone.
namespace Platform {

constexpr std::uint64_t eachByte = 0x0101'0101'0101'0101;

inline std::uint64_t wordAt(const char* bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

/// Not zero if one of the eight bytes is zero: the subtraction borrows from its highest bit, which
/// the byte itself has not set.
constexpr std::uint64_t zeroBytes(std::uint64_t word) {
    return (word - eachByte) & ~word & (eachByte << 7U);
}

/// Not zero if one of the eight bytes is `wanted`.
constexpr std::uint64_t bytesEqual(std::uint64_t word, char wanted) {
    return zeroBytes(word ^ (eachByte * static_cast<unsigned char>(wanted)));
}

}  // namespace Platform
