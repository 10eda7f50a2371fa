#include "crypto/stream/hash/hash_sha.hpp"

#include <bit>

#include "crypto/stream/hash/roots.hpp"
#include "crypto/stream/hash/sha_rounds.hpp"

namespace kv::crypto::stream::hash {

namespace {

// SHA-1, FIPS 180-4 sections 4.1.1, 4.2.1 and 6.1.2.

/// Message word of round `Round`; the last sixteen words stand in a ring.
template <std::size_t Round>
[[gnu::always_inline]] inline std::uint32_t sha1_word(std::array<std::uint32_t, 16>& w,
                                                      const unsigned char* block) {
    std::uint32_t& word = w[Round % 16];
    if constexpr (Round < 16)
        word = load_big<std::uint32_t>(block + sizeof word * Round);
    else
        word =
            std::rotl(w[(Round + 13) % 16] ^ w[(Round + 8) % 16] ^ w[(Round + 2) % 16] ^ word, 1);
    return word;
}

template <std::size_t Round>
[[gnu::always_inline]] inline void sha1_round(sha1_state& r, std::array<std::uint32_t, 16>& w,
                                              const unsigned char* block) {
    constexpr std::array<std::uint32_t, 4> primes{2, 3, 5, 10};
    constexpr std::uint32_t constant = root_times_2_to_30(primes[Round / 20], 2);
    // The names of the registers turn by one with every round.
    constexpr std::size_t size = 5;
    const std::uint32_t a = r[(size - Round % size) % size];
    std::uint32_t& b = r[(size + 1 - Round % size) % size];
    const std::uint32_t c = r[(size + 2 - Round % size) % size];
    const std::uint32_t d = r[(size + 3 - Round % size) % size];
    std::uint32_t& e = r[(size + 4 - Round % size) % size];
    e += sha1_word<Round>(w, block) + constant + std::rotl(a, 5);
    if constexpr (Round / 20 == 0)
        e += d ^ (b & (c ^ d));
    else if constexpr (Round / 20 == 2)
        e += (c & d) + (b & (c ^ d));
    else
        e += b ^ c ^ d;
    b = std::rotl(b, 30);
}

// SHA-2, FIPS 180-4 sections 4.1.2, 4.1.3, 6.2.2 and 6.4.2. The two functions differ in the word,
// the rotations and the number of rounds.

template <class Word>
struct Sha2;

template <>
struct Sha2<std::uint32_t> {
    static constexpr std::size_t rounds = 64;
    static constexpr const auto& constants = sha256_constants;
    static std::uint32_t sum_a(std::uint32_t x) {
        return std::rotr(x, 2) ^ std::rotr(x, 13) ^ std::rotr(x, 22);
    }
    static std::uint32_t sum_e(std::uint32_t x) {
        return std::rotr(x, 6) ^ std::rotr(x, 11) ^ std::rotr(x, 25);
    }
    static std::uint32_t sigma_0(std::uint32_t x) {
        return std::rotr(x, 7) ^ std::rotr(x, 18) ^ (x >> 3U);
    }
    static std::uint32_t sigma_1(std::uint32_t x) {
        return std::rotr(x, 17) ^ std::rotr(x, 19) ^ (x >> 10U);
    }
};

/// The first 64 bits of the fractions of the cube roots of the first 80 primes.
constexpr auto sha512Constants = prime_root_fractions<3, 0>(std::make_index_sequence<80>());
static_assert(sha512Constants[0] == 0x428A2F98D728AE22 &&
              sha512Constants[79] == 0x6C44198C4A475817);

template <>
struct Sha2<unsigned long long> {
    static constexpr std::size_t rounds = 80;
    static constexpr const auto& constants = sha512Constants;
    static unsigned long long sum_a(unsigned long long x) {
        return std::rotr(x, 28) ^ std::rotr(x, 34) ^ std::rotr(x, 39);
    }
    static unsigned long long sum_e(unsigned long long x) {
        return std::rotr(x, 14) ^ std::rotr(x, 18) ^ std::rotr(x, 41);
    }
    static unsigned long long sigma_0(unsigned long long x) {
        return std::rotr(x, 1) ^ std::rotr(x, 8) ^ (x >> 7U);
    }
    static unsigned long long sigma_1(unsigned long long x) {
        return std::rotr(x, 19) ^ std::rotr(x, 61) ^ (x >> 6U);
    }
};

template <std::size_t Round, class Word>
[[gnu::always_inline]] inline Word sha2_word(std::array<Word, 16>& w, const unsigned char* block) {
    Word& word = w[Round % 16];
    if constexpr (Round < 16)
        word = load_big<Word>(block + sizeof word * Round);
    else
        word += Sha2<Word>::sigma_0(w[(Round + 1) % 16]) + w[(Round + 9) % 16] +
                Sha2<Word>::sigma_1(w[(Round + 14) % 16]);
    return word;
}

template <std::size_t Round, class Word>
[[gnu::always_inline]] inline void sha2_round(std::array<Word, 8>& r, std::array<Word, 16>& w,
                                              const unsigned char* block) {
    constexpr std::size_t size = 8;
    const auto at = [&r](std::size_t name) -> Word& {
        return r[(size + name - Round % size) % size];
    };
    const Word a = at(0);
    const Word b = at(1);
    const Word c = at(2);
    const Word e = at(4);
    const Word f = at(5);
    const Word g = at(6);
    Word& h = at(7);
    h += Sha2<Word>::constants[Round] + sha2_word<Round>(w, block);
    h += Sha2<Word>::sum_e(e) + (g ^ (e & (f ^ g)));
    at(3) += h;
    h += Sha2<Word>::sum_a(a) + ((a & b) + (c & (a ^ b)));
}

template <class Word>
[[gnu::always_inline]] inline void sha2_blocks(std::array<Word, 8>& state,
                                               const unsigned char* blocks, std::size_t count) {
    for (; count != 0; --count, blocks += 16 * sizeof(Word)) {
        std::array<Word, 8> r = state;
        std::array<Word, 16> w;
        [&]<std::size_t... rounds>(std::index_sequence<rounds...>) {
            (sha2_round<rounds>(r, w, blocks), ...);
        }
        (std::make_index_sequence<Sha2<Word>::rounds>());
        for (std::size_t i = 0; i < state.size(); ++i) state[i] += r[i];
    }
}

/// Fractions of the square roots of the first eight primes and of the next eight.
constexpr auto firstFractions = prime_root_fractions<2, 0>(std::make_index_sequence<8>());
constexpr auto secondFractions = prime_root_fractions<2, 8>(std::make_index_sequence<8>());
static_assert(firstFractions[0] == 0x6A09E667F3BCC908 && secondFractions[0] == 0xCBBB9D5DC1059ED8);

}  // namespace

void sha1_blocks_portable(sha1_state& state, const unsigned char* blocks, std::size_t count) {
    constexpr std::size_t blockBytes = 64;
    constexpr std::size_t roundCount = 80;
    for (; count != 0; --count, blocks += blockBytes) {
        sha1_state r = state;
        std::array<std::uint32_t, 16> w;
        [&]<std::size_t... rounds>(std::index_sequence<rounds...>) {
            (sha1_round<rounds>(r, w, blocks), ...);
        }
        (std::make_index_sequence<roundCount>());
        for (std::size_t i = 0; i < state.size(); ++i) state[i] += r[i];
    }
}

void sha256_blocks_portable(sha256_state& state, const unsigned char* blocks, std::size_t count) {
    sha2_blocks(state, blocks, count);
}

void hash_sha1::transform_blocks(const unsigned char* blocks, std::size_t count) {
    const auto compress = has_sha_extensions() ? &sha1_blocks_extensions : &sha1_blocks_portable;
    compress(state, blocks, count);
}

template <std::size_t DigestBits>
void hash_sha_224_256_base<DigestBits>::transform_blocks(const unsigned char* blocks,
                                                         std::size_t count) {
    const auto compress =
        has_sha_extensions() ? &sha256_blocks_extensions : &sha256_blocks_portable;
    compress(this->state, blocks, count);
}

template <std::size_t DigestBits>
void hash_sha_384_512_base<DigestBits>::transform_blocks(const unsigned char* blocks,
                                                         std::size_t count) {
    sha2_blocks(this->state, blocks, count);
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
    std::ranges::copy(md_initial_words, state.begin());
    state[4] = 0xC3D2E1F0;
}

void hash_sha224::reset() {
    hash_sha_224_256_base::reset();
    set_initial_words();
}

void hash_sha224::set_initial_words() {
    // The second 32 bits of the fractions of SHA-384.
    std::ranges::transform(secondFractions, state.begin(), [](std::uint64_t fraction) {
        return static_cast<std::uint32_t>(fraction);
    });
}

void hash_sha256::reset() {
    hash_sha_224_256_base::reset();
    set_initial_words();
}

void hash_sha256::set_initial_words() {
    std::ranges::transform(firstFractions, state.begin(), [](std::uint64_t fraction) {
        return static_cast<std::uint32_t>(fraction >> 32U);
    });
}

void hash_sha384::reset() {
    hash_sha_384_512_base::reset();
    set_initial_words();
}

void hash_sha384::set_initial_words() {
    std::ranges::copy(secondFractions, state.begin());
}

void hash_sha512::reset() {
    hash_sha_384_512_base::reset();
    set_initial_words();
}

void hash_sha512::set_initial_words() {
    std::ranges::copy(firstFractions, state.begin());
}

}  // namespace kv::crypto::stream::hash
