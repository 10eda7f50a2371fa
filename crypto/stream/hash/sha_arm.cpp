#include "crypto/stream/hash/sha_rounds.hpp"
#include "util/crc/Processor.hpp"

#ifdef TESSARON_ON_ARM

#include <arm_neon.h>
#include <sys/auxv.h>

#include <utility>

#include "crypto/stream/hash/sha2_round.hpp"

#define TESSARON_SHA [[gnu::target("+crypto")]]

// SHA-1 and SHA-256 with the instructions of Arm's Architecture Reference Manual (DDI 0487),
// sections C7.2: SHA1C, SHA1M, SHA1P, SHA1H, SHA1SU0 and SHA1SU1; SHA256H, SHA256H2, SHA256SU0 and
// SHA256SU1.
namespace kv::crypto::stream::hash {

namespace {

/// Loads the sixteen words of a block.
TESSARON_SHA inline void load_words(uint32x4_t (&w)[4], const unsigned char* block) {
    for (std::size_t i = 0; i < 4; ++i)
        w[i] = vreinterpretq_u32_u8(vrev32q_u8(vld1q_u8(block + sizeof(uint32x4_t) * i)));
}

/// Computes four rounds of SHA-1, beginning with round 4 * `Group`, and the message words of group
/// `Group` + 4.
template <int Group>
TESSARON_SHA inline void sha1_group(uint32x4_t& abcd, std::uint32_t& e, uint32x4_t (&w)[4]) {
    constexpr int twentieth = Group / 5;
    constexpr int lastGroup = 19;
    uint32x4_t& words = w[Group % 4];
    const uint32x4_t sums = vaddq_u32(words, vdupq_n_u32(sha1_constants[twentieth]));
    const std::uint32_t nextE = vsha1h_u32(vgetq_lane_u32(abcd, 0));
    if constexpr (twentieth == 0)
        abcd = vsha1cq_u32(abcd, e, sums);
    else if constexpr (twentieth == 2)
        abcd = vsha1mq_u32(abcd, e, sums);
    else
        abcd = vsha1pq_u32(abcd, e, sums);
    e = nextE;
    if constexpr (Group + 4 <= lastGroup) {
        words = vsha1su0q_u32(words, w[(Group + 1) % 4], w[(Group + 2) % 4]);
        words = vsha1su1q_u32(words, w[(Group + 3) % 4]);
    }
}

template <int... groups>
TESSARON_SHA inline void sha1_rounds(uint32x4_t& abcd, std::uint32_t& e, uint32x4_t (&w)[4],
                                     std::integer_sequence<int, groups...> /*numbers*/) {
    (sha1_group<groups>(abcd, e, w), ...);
}

/// Computes four rounds of SHA-256, beginning with round 4 * `Group`, and the message words of
/// group `Group` + 4.
template <int Group>
TESSARON_SHA inline void sha256_group(uint32x4_t& abcd, uint32x4_t& efgh, uint32x4_t (&w)[4]) {
    constexpr int lastGroup = 15;
    uint32x4_t& words = w[Group % 4];
    const uint32x4_t sums =
        vaddq_u32(words, vld1q_u32(&Sha2<std::uint32_t>::constants[std::size_t{4} * Group]));
    const uint32x4_t oldAbcd = abcd;
    abcd = vsha256hq_u32(abcd, efgh, sums);
    efgh = vsha256h2q_u32(efgh, oldAbcd, sums);
    if constexpr (Group + 4 <= lastGroup) {
        words = vsha256su0q_u32(words, w[(Group + 1) % 4]);
        words = vsha256su1q_u32(words, w[(Group + 2) % 4], w[(Group + 3) % 4]);
    }
}

template <int... groups>
TESSARON_SHA inline void sha256_rounds(uint32x4_t& abcd, uint32x4_t& efgh, uint32x4_t (&w)[4],
                                       std::integer_sequence<int, groups...> /*numbers*/) {
    (sha256_group<groups>(abcd, efgh, w), ...);
}

}  // namespace

bool can_accelerate_sha1() {
    return (getauxval(AT_HWCAP) & HWCAP_SHA1) != 0;
}

bool can_accelerate_sha256() {
    return (getauxval(AT_HWCAP) & HWCAP_SHA2) != 0;
}

TESSARON_SHA void sha1_blocks_accelerated(sha1_state& state, const unsigned char* blocks,
                                          std::size_t count) {
    uint32x4_t abcd = vld1q_u32(state.data());
    std::uint32_t e = state[4];
    for (; count != 0; --count, blocks += sha1_block_bytes) {
        uint32x4_t w[4];
        load_words(w, blocks);
        const uint32x4_t oldAbcd = abcd;
        const std::uint32_t oldE = e;
        sha1_rounds(abcd, e, w, std::make_integer_sequence<int, 20>());
        abcd = vaddq_u32(abcd, oldAbcd);
        e += oldE;
    }
    vst1q_u32(state.data(), abcd);
    state[4] = e;
}

TESSARON_SHA void sha256_blocks_accelerated(sha256_state& state, const unsigned char* blocks,
                                            std::size_t count) {
    uint32x4_t abcd = vld1q_u32(state.data());
    uint32x4_t efgh = vld1q_u32(state.data() + 4);
    for (; count != 0; --count, blocks += sha256_block_bytes) {
        uint32x4_t w[4];
        load_words(w, blocks);
        const uint32x4_t oldAbcd = abcd;
        const uint32x4_t oldEfgh = efgh;
        sha256_rounds(abcd, efgh, w, std::make_integer_sequence<int, 16>());
        abcd = vaddq_u32(abcd, oldAbcd);
        efgh = vaddq_u32(efgh, oldEfgh);
    }
    vst1q_u32(state.data(), abcd);
    vst1q_u32(state.data() + 4, efgh);
}

}  // namespace kv::crypto::stream::hash

#endif
