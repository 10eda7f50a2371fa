#include "crypto/stream/hash/keccak_rounds.hpp"

#include <bit>
#include <cstddef>
#include <cstdint>

#include "crypto/stream/hash/words.hpp"
#include "util/crc/Processor.hpp"

namespace kv::crypto::stream::hash {

namespace {

using Lane = unsigned long long;
using Row = std::array<Lane, 5>;
constexpr int rounds = 24;

/// Round constants of iota: bit 2^j - 1 of constant r is output 7 r + j of the linear feedback
/// shift register with the polynomial x^8 + x^6 + x^5 + x^4 + 1. FIPS 202, section 3.2.5.
constexpr std::array<Lane, rounds> roundConstants = [] {
    std::array<Lane, rounds> constants{};
    unsigned shiftRegister = 1;
    for (Lane& constant : constants) {
        for (unsigned j = 0; j <= 6; ++j) {
            if ((shiftRegister & 1U) != 0) constant |= Lane{1} << ((1U << j) - 1);
            shiftRegister = shiftRegister << 1U ^ (shiftRegister >> 7U) * 0x171U;
        }
    }
    return constants;
}();
static_assert(roundConstants[0] == 1 && roundConstants[23] == 0x8000000080008008);

/// The source lane and the rotation that rho and pi give a lane: step t of the walk that begins at
/// lane (1, 0) rotates by (t + 1)(t + 2) / 2. FIPS 202, sections 3.2.2 and 3.2.3.
struct Move {
    std::size_t from = 0;
    std::uint8_t rotation = 0;  ///< fits the int of std::rotl, and the unsigned of libc++
};
constexpr std::array<Move, 25> moves = [] {
    std::array<Move, 25> table{};
    std::size_t x = 1;
    std::size_t y = 0;
    for (int t = 0; t < rounds; ++t) {
        const std::size_t nextX = y;
        const std::size_t nextY = (2 * x + 3 * y) % 5;
        table[nextX + 5 * nextY] = {x + 5 * y,
                                    static_cast<std::uint8_t>((t + 1) * (t + 2) / 2 % 64)};
        x = nextX;
        y = nextY;
    }
    return table;
}();

/// One round from `a` to `out`. `parity` holds the column parities of `a` on entry and those of
/// `out` on return; they are computed while the lanes are still in CPU registers.
[[gnu::always_inline]] inline void permute_round(const keccak_lanes& a, keccak_lanes& out,
                                                 Row& parity, Lane constant) {
    Row theta;
    for (std::size_t x = 0; x < 5; ++x)
        theta[x] = parity[(x + 4) % 5] ^ std::rotl(parity[(x + 1) % 5], 1);
    parity = {};
#pragma GCC unroll 5
    for (std::size_t y = 0; y < 5; ++y) {
        Row row;
#pragma GCC unroll 5
        for (std::size_t x = 0; x < 5; ++x) {
            const Move move = moves[x + 5 * y];
            row[x] = std::rotl(a[move.from] ^ theta[move.from % 5], move.rotation);
        }
#pragma GCC unroll 5
        for (std::size_t x = 0; x < 5; ++x) {
            const Lane iota = x == 0 && y == 0 ? constant : 0;
            out[x + 5 * y] = row[x] ^ (~row[(x + 1) % 5] & row[(x + 2) % 5]) ^ iota;
            parity[x] ^= out[x + 5 * y];
        }
    }
}

[[gnu::always_inline]] inline void keccak_f_1600(keccak_lanes& lanes) {
    Row parity;
    for (std::size_t x = 0; x < 5; ++x)
        parity[x] = lanes[x] ^ lanes[x + 5] ^ lanes[x + 10] ^ lanes[x + 15] ^ lanes[x + 20];
    keccak_lanes other;
    for (std::size_t round = 0; round < rounds; round += 2) {
        permute_round(lanes, other, parity, roundConstants[round]);
        permute_round(other, lanes, parity, roundConstants[round + 1]);
    }
}

[[gnu::always_inline]] inline void absorb(keccak_lanes& lanes, std::size_t rate,
                                          const unsigned char* blocks, std::size_t count) {
    for (; count != 0; --count, blocks += rate) {
        for (std::size_t i = 0; i < rate / sizeof(Lane); ++i)
            lanes[i] ^= load_little<Lane>(blocks + sizeof(Lane) * i);
        keccak_f_1600(lanes);
    }
}

}  // namespace

void keccak_absorb_portable(keccak_lanes& lanes, std::size_t rate, const unsigned char* blocks,
                            std::size_t count) {
    absorb(lanes, rate, blocks, count);
}

#ifdef TESSARON_ON_X86

bool has_bit_manipulation() {
    return static_cast<bool>(__builtin_cpu_supports("bmi")) &&
           static_cast<bool>(__builtin_cpu_supports("bmi2"));
}

[[gnu::target("bmi,bmi2")]] void keccak_absorb_bmi(keccak_lanes& lanes, std::size_t rate,
                                                   const unsigned char* blocks, std::size_t count) {
    absorb(lanes, rate, blocks, count);
}

#else

bool has_bit_manipulation() {
    return false;
}

void keccak_absorb_bmi(keccak_lanes& lanes, std::size_t rate, const unsigned char* blocks,
                       std::size_t count) {
    absorb(lanes, rate, blocks, count);
}

#endif

}  // namespace kv::crypto::stream::hash
