#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "crypto/stream/hash/roots.hpp"

/// The compression functions of SHA-1 and SHA-256 over whole blocks of 64 bytes, in portable code
/// and with the SHA extensions of the processor. FIPS 180-4, sections 6.1.2 and 6.2.2.
namespace kv::crypto::stream::hash {

using sha1_state = std::array<std::uint32_t, 5>;
using sha256_state = std::array<std::uint32_t, 8>;

/// The first 32 bits of the fractions of the cube roots of the first 64 primes.
inline constexpr std::array<std::uint32_t, 64> sha256_constants = [] {
    std::array<std::uint32_t, 64> constants{};
    const auto fractions = prime_root_fractions<3, 0>(std::make_index_sequence<64>());
    for (std::size_t i = 0; i < constants.size(); ++i)
        constants[i] = static_cast<std::uint32_t>(fractions[i] >> 32U);
    return constants;
}();
static_assert(sha256_constants[0] == 0x428A2F98 && sha256_constants[63] == 0xC67178F2);

void sha1_blocks_portable(sha1_state& state, const unsigned char* blocks, std::size_t count);
void sha256_blocks_portable(sha256_state& state, const unsigned char* blocks, std::size_t count);

/// The processor has the SHA extensions. If not, the two functions below must not be called.
bool has_sha_extensions();

void sha1_blocks_extensions(sha1_state& state, const unsigned char* blocks, std::size_t count);
void sha256_blocks_extensions(sha256_state& state, const unsigned char* blocks, std::size_t count);

}  // namespace kv::crypto::stream::hash
