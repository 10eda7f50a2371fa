#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "crypto/stream/hash/roots.hpp"

/// The compression functions of SHA-1, SHA-256 and SHA-512 over whole blocks, in portable code and
/// with instructions that not every CPU has. FIPS 180-4, sections 6.1.2, 6.2.2 and 6.4.2.
namespace kv::crypto::stream::hash {

using sha1_state = std::array<std::uint32_t, 5>;
using sha256_state = std::array<std::uint32_t, 8>;
using sha512_state = std::array<unsigned long long, 8>;

/// The sizes of the blocks in bytes.
inline constexpr std::size_t sha1_block_bytes = 64;
inline constexpr std::size_t sha256_block_bytes = 64;
inline constexpr std::size_t sha512_block_bytes = 128;

/// The constants of SHA-1, each for twenty rounds. FIPS 180-4, section 4.2.1.
inline constexpr std::array<std::uint32_t, 4> sha1_constants{
    root_times_2_to_30(2, 2), root_times_2_to_30(3, 2), root_times_2_to_30(5, 2),
    root_times_2_to_30(10, 2)};

void sha1_blocks_portable(sha1_state& state, const unsigned char* blocks, std::size_t count);
void sha256_blocks_portable(sha256_state& state, const unsigned char* blocks, std::size_t count);
void sha512_blocks_portable(sha512_state& state, const unsigned char* blocks, std::size_t count);

/// True if the CPU has the instructions of the accelerated function for this algorithm, which must
/// not be called otherwise.
bool can_accelerate_sha1();
bool can_accelerate_sha256();
bool can_accelerate_sha512();

void sha1_blocks_accelerated(sha1_state& state, const unsigned char* blocks, std::size_t count);
void sha256_blocks_accelerated(sha256_state& state, const unsigned char* blocks, std::size_t count);
void sha512_blocks_accelerated(sha512_state& state, const unsigned char* blocks, std::size_t count);

}  // namespace kv::crypto::stream::hash
