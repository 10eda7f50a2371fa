#pragma once

#include <array>
#include <cstddef>

/// Absorbing whole blocks with the permutation Keccak-f[1600], FIPS 202 section 3.
namespace kv::crypto::stream::hash {

using keccak_lanes = std::array<unsigned long long, 25>;

/// Xors each of the `count` blocks of `rate` bytes into the first lanes, and permutes the lanes
/// after each block.
void keccak_absorb_portable(keccak_lanes& lanes, std::size_t rate, const unsigned char* blocks,
                            std::size_t count);

/// True if the CPU has BMI and BMI2, which rotate and and-not into a third register. The function
/// below, the same in these instructions, must not be called otherwise.
bool has_bit_manipulation();

void keccak_absorb_bmi(keccak_lanes& lanes, std::size_t rate, const unsigned char* blocks,
                       std::size_t count);

}  // namespace kv::crypto::stream::hash
