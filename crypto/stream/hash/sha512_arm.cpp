#include "crypto/stream/hash/sha_rounds.hpp"
#include "util/crc/Processor.hpp"

#ifdef TESSARON_ON_ARM

#include <arm_neon.h>
#include <sys/auxv.h>

#include <utility>

#include "crypto/stream/hash/sha2_round.hpp"

// GCC has the instructions for SHA-512 under this name, since Arm added both together.
#define TESSARON_SHA [[gnu::target("arch=armv8.2-a+sha3")]]

// SHA-512 with the instructions of Arm's Architecture Reference Manual (DDI 0487), sections C7.2:
// SHA512H, SHA512H2, SHA512SU0 and SHA512SU1.
namespace kv::crypto::stream::hash {

namespace {

using Word = unsigned long long;
constexpr std::size_t pairsInBlock = 8;

// As bytes, since the intrinsics for words take pointers to another type of the same size.

TESSARON_SHA inline uint64x2_t load(const void* words) {
    return vreinterpretq_u64_u8(vld1q_u8(static_cast<const std::uint8_t*>(words)));
}

TESSARON_SHA inline void store(void* place, uint64x2_t words) {
    vst1q_u8(static_cast<std::uint8_t*>(place), vreinterpretq_u8_u64(words));
}

/// The upper word of `first` and the lower one of `second`.
TESSARON_SHA inline uint64x2_t across(uint64x2_t first, uint64x2_t second) {
    return vextq_u64(first, second, 1);
}

/// The eight registers as pairs; the first of each is the lower word.
struct Registers {
    uint64x2_t ab;
    uint64x2_t cd;
    uint64x2_t ef;
    uint64x2_t gh;
};

TESSARON_SHA inline Registers sum(const Registers& one, const Registers& other) {
    return {vaddq_u64(one.ab, other.ab), vaddq_u64(one.cd, other.cd), vaddq_u64(one.ef, other.ef),
            vaddq_u64(one.gh, other.gh)};
}

/// Computes two rounds, beginning with round 2 * `Pair`, and the message words of sixteen rounds
/// later.
template <std::size_t Pair>
TESSARON_SHA inline void sha512_pair(Registers& r, uint64x2_t (&w)[pairsInBlock]) {
    const auto after = [](std::size_t distance) { return (Pair + distance) % pairsInBlock; };
    uint64x2_t& words = w[Pair % pairsInBlock];
    const uint64x2_t sums = vaddq_u64(words, vld1q_u64(&Sha2<Word>::constants[2 * Pair]));
    // The upper word belongs to the first of the two rounds.
    const uint64x2_t first = vaddq_u64(r.gh, across(sums, sums));
    const uint64x2_t second = vsha512hq_u64(first, across(r.ef, r.gh), across(r.cd, r.ef));
    r = {vsha512h2q_u64(second, r.cd, r.ab), r.ab, vaddq_u64(r.cd, second), r.ef};
    if constexpr (2 * Pair + 16 < Sha2<Word>::rounds) {
        words = vsha512su0q_u64(words, w[after(1)]);
        words = vsha512su1q_u64(words, w[after(7)], across(w[after(4)], w[after(5)]));
    }
}

template <std::size_t... pairs>
TESSARON_SHA inline void sha512_rounds(Registers& r, uint64x2_t (&w)[pairsInBlock],
                                       std::index_sequence<pairs...> /*numbers*/) {
    (sha512_pair<pairs>(r, w), ...);
}

}  // namespace

bool can_accelerate_sha512() {
    return (getauxval(AT_HWCAP) & HWCAP_SHA512) != 0;
}

TESSARON_SHA void sha512_blocks_accelerated(sha512_state& state, const unsigned char* blocks,
                                            std::size_t count) {
    Registers registers{load(&state[0]), load(&state[2]), load(&state[4]), load(&state[6])};
    for (; count != 0; --count, blocks += sha512_block_bytes) {
        uint64x2_t w[pairsInBlock];
        for (std::size_t i = 0; i < pairsInBlock; ++i)
            w[i] = vreinterpretq_u64_u8(vrev64q_u8(vld1q_u8(blocks + sizeof(uint64x2_t) * i)));
        const Registers old = registers;
        sha512_rounds(registers, w, std::make_index_sequence<Sha2<Word>::rounds / 2>());
        registers = sum(registers, old);
    }
    store(&state[0], registers.ab);
    store(&state[2], registers.cd);
    store(&state[4], registers.ef);
    store(&state[6], registers.gh);
}

}  // namespace kv::crypto::stream::hash

#endif
