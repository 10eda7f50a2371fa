#include "crypto/stream/hash/sha_rounds.hpp"
#include "util/crc/Processor.hpp"

#ifdef TESSARON_ON_X86

#include <cpuid.h>
#include <immintrin.h>

#include <utility>

#include "crypto/stream/hash/sha2_round.hpp"

#define TESSARON_SHA [[gnu::target("sha,sse4.1,ssse3")]]

namespace kv::crypto::stream::hash {

namespace {

bool detect_sha_extensions() {
    unsigned a = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
    constexpr unsigned shaBit = 1U << 29U;
    constexpr unsigned neededBits = 1U << 9U | 1U << 19U;  // SSSE3 and SSE4.1
    if (__get_cpuid(1, &a, &b, &c, &d) == 0 || (c & neededBits) != neededBits) return false;
    return __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & shaBit) != 0;
}

TESSARON_SHA inline __m128i load(const void* place) {
    return _mm_loadu_si128(static_cast<const __m128i*>(place));
}

TESSARON_SHA inline void store(void* place, __m128i words) {
    _mm_storeu_si128(static_cast<__m128i*>(place), words);
}

/// Loads the sixteen words of a block. `order` is the shuffle that puts their bytes in order.
TESSARON_SHA inline void load_words(__m128i (&w)[4], const unsigned char* block, __m128i order) {
    for (std::size_t i = 0; i < 4; ++i)
        w[i] = _mm_shuffle_epi8(load(block + sizeof(__m128i) * i), order);
}

/// Computes four rounds of SHA-1, beginning with round 4 * `Group`. On entry `e` includes their
/// message words. The function also mixes these words into those of the next three groups.
template <int Group>
TESSARON_SHA inline void sha1_group(__m128i& abcd, __m128i& e, __m128i (&w)[4], __m128i old_e) {
    constexpr int lastGroup = 19;
    const __m128i words = w[Group % 4];
    __m128i& first = w[(Group + 1) % 4];
    __m128i& second = w[(Group + 2) % 4];
    __m128i& third = w[(Group + 3) % 4];
    if constexpr (Group >= 3 && Group + 1 <= lastGroup) first = _mm_sha1msg2_epu32(first, words);
    // `abcd` is on the critical path, so the rounds should work in its register, and the other
    // instructions on the copy. Without this hint the compiler does the reverse, which costs 2 % of
    // the time.
    __m128i copy = abcd;
    asm("" : "+x"(copy));
    abcd = _mm_sha1rnds4_epu32(abcd, e, Group / 5);
    e = _mm_sha1nexte_epu32(copy, Group == lastGroup ? old_e : first);
    if constexpr (Group >= 2 && Group + 2 <= lastGroup) second = _mm_xor_si128(second, words);
    if constexpr (Group >= 1 && Group + 3 <= lastGroup) third = _mm_sha1msg1_epu32(third, words);
}

template <int... groups>
TESSARON_SHA inline void sha1_rounds(__m128i& abcd, __m128i& e, __m128i (&w)[4], __m128i old_e,
                                     std::integer_sequence<int, groups...> /*numbers*/) {
    (sha1_group<groups>(abcd, e, w, old_e), ...);
}

/// Computes four rounds of SHA-256, beginning with round 4 * `Group`, and the message words of
/// group `Group` + 4.
template <int Group>
TESSARON_SHA inline void sha256_group(__m128i& abef, __m128i& cdgh, __m128i (&w)[4]) {
    constexpr int now = Group % 4;
    constexpr int upperHalf = 0x0E;
    const __m128i words =
        _mm_add_epi32(w[now], load(&Sha2<std::uint32_t>::constants[std::size_t{4} * Group]));
    cdgh = _mm_sha256rnds2_epu32(cdgh, abef, words);
    abef = _mm_sha256rnds2_epu32(abef, cdgh, _mm_shuffle_epi32(words, upperHalf));
    if constexpr (Group + 4 < 16) {
        const __m128i middle = _mm_alignr_epi8(w[(now + 3) % 4], w[(now + 2) % 4], 4);
        const __m128i next = _mm_add_epi32(_mm_sha256msg1_epu32(w[now], w[(now + 1) % 4]), middle);
        w[now] = _mm_sha256msg2_epu32(next, w[(now + 3) % 4]);
    }
}

template <int... groups>
TESSARON_SHA inline void sha256_rounds(__m128i& abef, __m128i& cdgh, __m128i (&w)[4],
                                       std::integer_sequence<int, groups...> /*numbers*/) {
    (sha256_group<groups>(abef, cdgh, w), ...);
}

}  // namespace

bool can_accelerate_sha1() {
    static const bool isThere = detect_sha_extensions();
    return isThere;
}

bool can_accelerate_sha256() {
    return can_accelerate_sha1();
}

TESSARON_SHA void sha1_blocks_accelerated(sha1_state& state, const unsigned char* blocks,
                                          std::size_t count) {
    constexpr int reverseWords = 0x1B;
    const __m128i order = _mm_set_epi64x(0x0001020304050607, 0x08090A0B0C0D0E0F);
    __m128i abcd = _mm_shuffle_epi32(load(state.data()), reverseWords);
    __m128i e = _mm_set_epi32(static_cast<int>(state[4]), 0, 0, 0);
    for (; count != 0; --count, blocks += sha1_block_bytes) {
        __m128i w[4];
        load_words(w, blocks, order);
        const __m128i oldAbcd = abcd;
        const __m128i oldE = e;
        e = _mm_add_epi32(e, w[0]);
        sha1_rounds(abcd, e, w, oldE, std::make_integer_sequence<int, 20>());
        abcd = _mm_add_epi32(abcd, oldAbcd);
    }
    store(state.data(), _mm_shuffle_epi32(abcd, reverseWords));
    state[4] = static_cast<std::uint32_t>(_mm_extract_epi32(e, 3));
}

TESSARON_SHA void sha256_blocks_accelerated(sha256_state& state, const unsigned char* blocks,
                                            std::size_t count) {
    const __m128i order = _mm_set_epi64x(0x0C0D0E0F08090A0B, 0x0405060700010203);
    // The instructions expect the registers as a b e f and c d g h, highest word first.
    const __m128i cdab = _mm_shuffle_epi32(load(state.data()), 0xB1);
    const __m128i efgh = _mm_shuffle_epi32(load(state.data() + 4), 0x1B);
    __m128i abef = _mm_alignr_epi8(cdab, efgh, 8);
    __m128i cdgh = _mm_blend_epi16(efgh, cdab, 0xF0);
    for (; count != 0; --count, blocks += sha256_block_bytes) {
        __m128i w[4];
        load_words(w, blocks, order);
        const __m128i oldAbef = abef;
        const __m128i oldCdgh = cdgh;
        sha256_rounds(abef, cdgh, w, std::make_integer_sequence<int, 16>());
        abef = _mm_add_epi32(abef, oldAbef);
        cdgh = _mm_add_epi32(cdgh, oldCdgh);
    }
    const __m128i feba = _mm_shuffle_epi32(abef, 0x1B);
    const __m128i dchg = _mm_shuffle_epi32(cdgh, 0xB1);
    store(state.data(), _mm_blend_epi16(feba, dchg, 0xF0));
    store(state.data() + 4, _mm_alignr_epi8(dchg, feba, 8));
}

}  // namespace kv::crypto::stream::hash

#endif
