#include "crypto/stream/hash/hash_sha.hpp"

#include "crypto/stream/hash/roots.hpp"
#include "crypto/stream/hash/sha_rounds.hpp"

namespace kv::crypto::stream::hash {

namespace {

/// Fractional parts of the square roots of the first eight primes and of the next eight.
constexpr auto firstFractions = prime_root_fractions<2, 0>(std::make_index_sequence<8>());
constexpr auto secondFractions = prime_root_fractions<2, 8>(std::make_index_sequence<8>());
static_assert(firstFractions[0] == 0x6A09E667F3BCC908 && secondFractions[0] == 0xCBBB9D5DC1059ED8);

}  // namespace

void hash_sha1::transform_blocks(const unsigned char* blocks, std::size_t count) {
    const auto compress = can_accelerate_sha1() ? &sha1_blocks_accelerated : &sha1_blocks_portable;
    compress(state_, blocks, count);
}

template <std::size_t DigestBits>
void hash_sha_224_256_base<DigestBits>::transform_blocks(const unsigned char* blocks,
                                                         std::size_t count) {
    const auto compress =
        can_accelerate_sha256() ? &sha256_blocks_accelerated : &sha256_blocks_portable;
    compress(this->state_, blocks, count);
}

template <std::size_t DigestBits>
void hash_sha_384_512_base<DigestBits>::transform_blocks(const unsigned char* blocks,
                                                         std::size_t count) {
    const auto compress =
        can_accelerate_sha512() ? &sha512_blocks_accelerated : &sha512_blocks_portable;
    compress(this->state_, blocks, count);
}

template class hash_sha_224_256_base<224>;
template class hash_sha_224_256_base<256>;
template class hash_sha_384_512_base<384>;
template class hash_sha_384_512_base<512>;

void hash_sha1::reset() {
    hash_sha_base::reset();
    set_initial_words();
}

void hash_sha1::set_initial_words() {
    std::ranges::copy(md_initial_words, state_.begin());
    state_[4] = 0xC3D2E1F0;
}

void hash_sha224::reset() {
    hash_sha_224_256_base::reset();
    set_initial_words();
}

void hash_sha224::set_initial_words() {
    // The initial words of SHA-224 are the low halves of those of SHA-384.
    std::ranges::transform(secondFractions, state_.begin(), [](std::uint64_t fraction) {
        return static_cast<std::uint32_t>(fraction);
    });
}

void hash_sha256::reset() {
    hash_sha_224_256_base::reset();
    set_initial_words();
}

void hash_sha256::set_initial_words() {
    std::ranges::transform(firstFractions, state_.begin(), [](std::uint64_t fraction) {
        return static_cast<std::uint32_t>(fraction >> 32U);
    });
}

void hash_sha384::reset() {
    hash_sha_384_512_base::reset();
    set_initial_words();
}

void hash_sha384::set_initial_words() {
    std::ranges::copy(secondFractions, state_.begin());
}

void hash_sha512::reset() {
    hash_sha_384_512_base::reset();
    set_initial_words();
}

void hash_sha512::set_initial_words() {
    std::ranges::copy(firstFractions, state_.begin());
}

}  // namespace kv::crypto::stream::hash
