#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// The compression functions of SHA-1, SHA-256 and SHA-512 over whole blocks, in portable code and
/// with dedicated CPU instructions. FIPS 180-4, sections 6.1.2, 6.2.2 and 6.4.2.
namespace kv::crypto::stream::hash {

using sha1_state = std::array<std::uint32_t, 5>;
using sha256_state = std::array<std::uint32_t, 8>;
using sha512_state = std::array<unsigned long long, 8>;

void sha1_blocks_portable(sha1_state& state, const unsigned char* blocks, std::size_t count);
void sha256_blocks_portable(sha256_state& state, const unsigned char* blocks, std::size_t count);
void sha512_blocks_portable(sha512_state& state, const unsigned char* blocks, std::size_t count);

/// True if the CPU has the SHA extensions. The two functions below must not be called otherwise.
bool has_sha_extensions();

void sha1_blocks_extensions(sha1_state& state, const unsigned char* blocks, std::size_t count);
void sha256_blocks_extensions(sha256_state& state, const unsigned char* blocks, std::size_t count);

/// True if the CPU has AVX2, BMI and BMI2. The function below must not be called otherwise.
bool has_avx2();

void sha512_blocks_avx2(sha512_state& state, const unsigned char* blocks, std::size_t count);

}  // namespace kv::crypto::stream::hash
