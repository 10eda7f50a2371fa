#include "crypto/stream/hash/sha_rounds.hpp"

#include <bit>

#include "crypto/stream/hash/sha2_round.hpp"
#include "crypto/stream/hash/words.hpp"

namespace kv::crypto::stream::hash {

namespace {

// SHA-1, FIPS 180-4 sections 4.1.1, 4.2.1 and 6.1.2.

/// Message word of round `Round`; the last sixteen words are kept in a ring.
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
    // The names of the registers rotate by one with every round.
    constexpr std::size_t size = 5;
    const std::uint32_t a = r[(size - Round % size) % size];
    std::uint32_t& b = r[(size + 1 - Round % size) % size];
    const std::uint32_t c = r[(size + 2 - Round % size) % size];
    const std::uint32_t d = r[(size + 3 - Round % size) % size];
    std::uint32_t& e = r[(size + 4 - Round % size) % size];
    e += sha1_word<Round>(w, block) + sha1_constants[Round / 20] + std::rotl(a, 5);
    if constexpr (Round / 20 == 0)
        e += d ^ (b & (c ^ d));
    else if constexpr (Round / 20 == 2)
        e += (c & d) + (b & (c ^ d));
    else
        e += b ^ c ^ d;
    b = std::rotl(b, 30);
}

template <std::size_t... rounds>
[[gnu::always_inline]] inline void sha1_rounds(sha1_state& r, const unsigned char* block,
                                               std::index_sequence<rounds...> /*numbers*/) {
    std::array<std::uint32_t, 16> w;
    (sha1_round<rounds>(r, w, block), ...);
}

/// Message word of round `Round` of SHA-2; the last sixteen words are kept in a ring.
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

template <class Word, std::size_t... rounds>
[[gnu::always_inline]] inline void sha2_rounds(std::array<Word, 8>& r, const unsigned char* block,
                                               std::index_sequence<rounds...> /*numbers*/) {
    std::array<Word, 16> w;
    (sha2_round<rounds>(r, Word{Sha2<Word>::constants[rounds]} + sha2_word<rounds>(w, block)), ...);
}

template <class Word>
[[gnu::always_inline]] inline void sha2_blocks(std::array<Word, 8>& state,
                                               const unsigned char* blocks, std::size_t count) {
    for (; count != 0; --count, blocks += 16 * sizeof(Word)) {
        std::array<Word, 8> r = state;
        sha2_rounds(r, blocks, std::make_index_sequence<Sha2<Word>::rounds>());
        for (std::size_t i = 0; i < state.size(); ++i) state[i] += r[i];
    }
}

}  // namespace

void sha1_blocks_portable(sha1_state& state, const unsigned char* blocks, std::size_t count) {
    constexpr std::size_t roundCount = 80;
    for (; count != 0; --count, blocks += sha1_block_bytes) {
        sha1_state r = state;
        sha1_rounds(r, blocks, std::make_index_sequence<roundCount>());
        for (std::size_t i = 0; i < state.size(); ++i) state[i] += r[i];
    }
}

void sha256_blocks_portable(sha256_state& state, const unsigned char* blocks, std::size_t count) {
    sha2_blocks(state, blocks, count);
}

void sha512_blocks_portable(sha512_state& state, const unsigned char* blocks, std::size_t count) {
    sha2_blocks(state, blocks, count);
}

}  // namespace kv::crypto::stream::hash
