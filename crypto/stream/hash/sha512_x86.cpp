#include "crypto/stream/hash/sha_rounds.hpp"
#include "util/crc/Processor.hpp"

#ifdef TESSARON_ON_X86

#include <immintrin.h>

#include <utility>

#include "crypto/stream/hash/sha2_round.hpp"

#define TESSARON_AVX2 [[gnu::target("avx2,bmi,bmi2")]]

namespace kv::crypto::stream::hash {

namespace {

using Word = unsigned long long;
constexpr std::size_t pairs = Sha2<Word>::rounds / 2;
constexpr std::size_t pairsInBlock = 8;

/// The message words of two blocks, each plus the constant of its round. A pair of words of the
/// first block is followed by the same pair of the second one.
using Schedule = std::array<std::array<Word, 4>, pairs>;

template <int Count>
TESSARON_AVX2 [[gnu::always_inline]] inline __m256i rotated_right(__m256i x) {
    constexpr int bits = 64;
    return _mm256_xor_si256(_mm256_srli_epi64(x, Count), _mm256_slli_epi64(x, bits - Count));
}

TESSARON_AVX2 [[gnu::always_inline]] inline __m256i sigma_0(__m256i x) {
    const __m256i turnedByOneByte =
        _mm256_shuffle_epi8(x, _mm256_set_epi64x(0x080F0E0D0C0B0A09, 0x0007060504030201,
                                                 0x080F0E0D0C0B0A09, 0x0007060504030201));
    return _mm256_xor_si256(_mm256_xor_si256(rotated_right<1>(x), turnedByOneByte),
                            _mm256_srli_epi64(x, 7));
}

TESSARON_AVX2 [[gnu::always_inline]] inline __m256i sigma_1(__m256i x) {
    return _mm256_xor_si256(_mm256_xor_si256(rotated_right<19>(x), rotated_right<61>(x)),
                            _mm256_srli_epi64(x, 6));
}

TESSARON_AVX2 [[gnu::always_inline]] inline void put_pair(Schedule& schedule, std::size_t pair,
                                                          __m256i words) {
    const __m128i constants =
        _mm_loadu_si128(reinterpret_cast<const __m128i*>(&Sha2<Word>::constants[2 * pair]));
    const __m256i sums = _mm256_add_epi64(words, _mm256_broadcastsi128_si256(constants));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(schedule[pair].data()), sums);
    // The rounds add the sums from memory, which is faster than extracting them from the vector.
    asm("" : "+m"(schedule[pair]));
}

/// Loads the words of both blocks into `w`, as pairs, and into the schedule.
TESSARON_AVX2 [[gnu::always_inline]] inline void load_blocks(__m256i (&w)[pairsInBlock],
                                                             Schedule& schedule,
                                                             const unsigned char* first,
                                                             const unsigned char* second) {
    const __m256i order = _mm256_set_epi64x(0x08090A0B0C0D0E0F, 0x0001020304050607,
                                            0x08090A0B0C0D0E0F, 0x0001020304050607);
    for (std::size_t pair = 0; pair < pairsInBlock; ++pair) {
        const std::size_t offset = sizeof(__m128i) * pair;
        const __m256i bytes = _mm256_loadu2_m128i(reinterpret_cast<const __m128i*>(second + offset),
                                                  reinterpret_cast<const __m128i*>(first + offset));
        w[pair] = _mm256_shuffle_epi8(bytes, order);
        put_pair(schedule, pair, w[pair]);
    }
}

/// Computes two rounds of the first block, and the words of both blocks for sixteen rounds later.
template <std::size_t Pair>
TESSARON_AVX2 [[gnu::always_inline]] inline void first_block_pair(sha512_state& r,
                                                                  __m256i (&w)[pairsInBlock],
                                                                  Schedule& schedule) {
    const auto after = [](std::size_t distance) { return (Pair + distance) % pairsInBlock; };
    constexpr int oneWord = 8;
    sha2_round<2 * Pair>(r, schedule[Pair][0]);
    sha2_round<2 * Pair + 1>(r, schedule[Pair][1]);
    if constexpr (Pair + pairsInBlock < pairs) {
        __m256i& words = w[Pair % pairsInBlock];
        const __m256i from1 = _mm256_alignr_epi8(w[after(1)], words, oneWord);
        const __m256i from9 = _mm256_alignr_epi8(w[after(5)], w[after(4)], oneWord);
        words = _mm256_add_epi64(_mm256_add_epi64(words, sigma_0(from1)),
                                 _mm256_add_epi64(from9, sigma_1(w[after(7)])));
        put_pair(schedule, Pair + pairsInBlock, words);
    }
}

template <std::size_t... numbers>
TESSARON_AVX2 [[gnu::always_inline]] inline void first_block(
    sha512_state& r, __m256i (&w)[pairsInBlock], Schedule& schedule,
    std::index_sequence<numbers...> /*pairs*/) {
    (first_block_pair<numbers>(r, w, schedule), ...);
}

template <std::size_t... rounds>
TESSARON_AVX2 [[gnu::always_inline]] inline void second_block(
    sha512_state& r, const Schedule& schedule, std::index_sequence<rounds...> /*numbers*/) {
    (sha2_round<rounds>(r, schedule[rounds / 2][2 + rounds % 2]), ...);
}

TESSARON_AVX2 [[gnu::always_inline]] inline void add_to(sha512_state& state,
                                                        const sha512_state& r) {
    for (std::size_t i = 0; i < state.size(); ++i) state[i] += r[i];
}

}  // namespace

bool can_accelerate_sha512() {
    return static_cast<bool>(__builtin_cpu_supports("avx2")) &&
           static_cast<bool>(__builtin_cpu_supports("bmi")) &&
           static_cast<bool>(__builtin_cpu_supports("bmi2"));
}

TESSARON_AVX2 void sha512_blocks_accelerated(sha512_state& state, const unsigned char* blocks,
                                             std::size_t count) {
    Schedule schedule;
    for (; count != 0; --count, blocks += sha512_block_bytes) {
        const bool isPair = count > 1;
        __m256i w[pairsInBlock];
        load_blocks(w, schedule, blocks, isPair ? blocks + sha512_block_bytes : blocks);
        sha512_state r = state;
        first_block(r, w, schedule, std::make_index_sequence<pairs>());
        add_to(state, r);
        if (!isPair) break;
        --count;
        blocks += sha512_block_bytes;
        r = state;
        second_block(r, schedule, std::make_index_sequence<Sha2<Word>::rounds>());
        add_to(state, r);
    }
}

}  // namespace kv::crypto::stream::hash

#endif
