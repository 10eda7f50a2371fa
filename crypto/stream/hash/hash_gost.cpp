#include "crypto/stream/hash/hash_gost.hpp"

#include <bit>

#include "crypto/stream/hash/words.hpp"

namespace kv::crypto::stream::hash {

namespace {

using Words = std::array<std::uint32_t, 8>;
using Bytes = std::array<unsigned char, 32>;

/// The S-boxes of the parameter set (RFC 4357, section 11.2). The first one substitutes the lowest
/// nibble.
constexpr std::array<std::array<std::uint32_t, 16>, 8> rows{{
    {10, 4, 5, 6, 8, 1, 3, 7, 13, 12, 14, 0, 9, 2, 11, 15},
    {5, 15, 4, 0, 2, 13, 11, 9, 1, 7, 6, 3, 12, 14, 10, 8},
    {7, 15, 12, 14, 9, 4, 1, 0, 3, 11, 5, 2, 6, 10, 8, 13},
    {4, 10, 7, 12, 0, 15, 2, 8, 14, 1, 6, 5, 13, 11, 9, 3},
    {7, 6, 4, 11, 9, 12, 2, 10, 1, 8, 0, 14, 15, 13, 3, 5},
    {7, 6, 2, 4, 13, 9, 15, 0, 10, 1, 5, 11, 8, 14, 12, 3},
    {13, 14, 4, 1, 7, 0, 5, 10, 3, 12, 8, 15, 6, 2, 9, 11},
    {1, 3, 10, 9, 5, 11, 4, 15, 8, 6, 7, 14, 13, 0, 2, 12},
}};

/// The substitution of one input byte and the rotation by eleven bits that follows, in one look-up.
constexpr std::array<std::array<std::uint32_t, 256>, 4> roundTables = [] {
    constexpr int turn = 11;
    std::array<std::array<std::uint32_t, 256>, 4> tables{};
    for (std::size_t byte = 0; byte < tables.size(); ++byte) {
        for (std::size_t i = 0; i < tables[byte].size(); ++i) {
            const std::uint32_t substituted =
                rows[2 * byte + 1][i / 16] << 4U | rows[2 * byte][i % 16];
            tables[byte][i] = std::rotl(substituted << (8 * byte), turn);
        }
    }
    return tables;
}();

[[gnu::always_inline]] inline std::uint32_t round_function(std::uint32_t x) {
    return roundTables[0][x & 0xFFU] ^ roundTables[1][x >> 8U & 0xFFU] ^
           roundTables[2][x >> 16U & 0xFFU] ^ roundTables[3][x >> 24U];
}

/// One 64-bit quarter of the state in the cipher.
struct Quarter {
    std::uint32_t low;
    std::uint32_t high;
};

/// GOST 28147-89 on all four quarters, each with its own key. They are interleaved, since the
/// rounds of a single one depend on each other.
void encipher(std::array<Quarter, 4>& quarters, const std::array<Words, 4>& keys) {
    constexpr std::size_t roundCount = 32;
    constexpr std::size_t lastForward = 24;
    std::array<Quarter, 4> q = quarters;
    for (std::size_t round = 0; round < roundCount; round += 2) {
        // The key words go 1 to 8 three times and 8 to 1 once.
        const std::size_t first = round < lastForward ? round % 8 : 7 - round % 8;
        const std::size_t second = round < lastForward ? first + 1 : first - 1;
        for (std::size_t i = 0; i < q.size(); ++i)
            q[i].high ^= round_function(q[i].low + keys[i][first]);
        for (std::size_t i = 0; i < q.size(); ++i)
            q[i].low ^= round_function(q[i].high + keys[i][second]);
    }
    for (std::size_t i = 0; i < q.size(); ++i) quarters[i] = {q[i].high, q[i].low};
}

/// The transformation A: y4 || y3 || y2 || y1 becomes (y1 xor y2) || y4 || y3 || y2.
Words transformation_a(const Words& y) {
    return {y[2], y[3], y[4], y[5], y[6], y[7], y[0] ^ y[2], y[1] ^ y[3]};
}

/// The transformation P: byte 8 i + k of the argument becomes byte i + 4 k for i from 0 to 3.
Words transformation_p(const Words& w) {
    Words key{};
    for (std::size_t k = 0; k < 8; ++k)
        for (std::size_t i = 0; i < 4; ++i) {
            const std::size_t source = 8 * i + k;
            const std::uint32_t byte = w[source / 4] >> (8 * (source % 4)) & 0xFFU;
            key[k] |= byte << (8 * i);
        }
    return key;
}

Words exclusive_or(Words left, const Words& right) {
    for (std::size_t i = 0; i < left.size(); ++i) left[i] ^= right[i];
    return left;
}

/// The constant C3 of the key generation; the others are 0.
constexpr Words c3{0xFF00FF00, 0xFF00FF00, 0x00FF00FF, 0x00FF00FF,
                   0x00FFFF00, 0xFF0000FF, 0x000000FF, 0xFF00FFFF};

std::array<Words, 4> generated_keys(const Words& h, const Words& m) {
    std::array<Words, 4> keys{};
    Words u = h;
    Words v = m;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (i != 0) {
            u = transformation_a(u);
            if (i == 2) u = exclusive_or(u, c3);
            v = transformation_a(transformation_a(v));
        }
        keys[i] = transformation_p(exclusive_or(u, v));
    }
    return keys;
}

/// The mixing transformation psi, `Times` times: each step shifts the sixteen half words down by
/// one and puts the xor of the words 1, 2, 3, 4, 13 and 16 on top. The half words form one long
/// row, of which the state is the last sixteen.
template <std::size_t Times>
Words mixed(const Words& words) {
    std::array<std::uint16_t, 16 + Times> row;
    for (std::size_t i = 0; i < 16; ++i)
        row[i] = static_cast<std::uint16_t>(words[i / 2] >> (16 * (i % 2)));
    for (std::size_t i = 0; i < Times; ++i)
        row[16 + i] = row[i] ^ row[i + 1] ^ row[i + 2] ^ row[i + 3] ^ row[i + 12] ^ row[i + 15];
    Words result;
    for (std::size_t i = 0; i < result.size(); ++i)
        result[i] = row[Times + 2 * i] | std::uint32_t{row[Times + 2 * i + 1]} << 16U;
    return result;
}

}  // namespace

void hash_gost::reset() {
    hash_base::reset();
    control_sum_.fill(0);
}

void hash_gost::compress(const Words& m) {
    std::array<Quarter, 4> quarters;
    for (std::size_t i = 0; i < quarters.size(); ++i)
        quarters[i] = {state_[2 * i], state_[2 * i + 1]};
    encipher(quarters, generated_keys(state_, m));
    Words s;
    for (std::size_t i = 0; i < quarters.size(); ++i) {
        s[2 * i] = quarters[i].low;
        s[2 * i + 1] = quarters[i].high;
    }
    state_ = mixed<61>(exclusive_or(state_, mixed<1>(exclusive_or(m, mixed<12>(s)))));
}

void hash_gost::transform_blocks(const unsigned char* blocks, std::size_t count) {
    for (; count != 0; --count, blocks += block_bytes) {
        Words m;
        std::uint64_t carry = 0;
        for (std::size_t i = 0; i < m.size(); ++i) {
            m[i] = load_little<std::uint32_t>(blocks + sizeof(std::uint32_t) * i);
            carry += std::uint64_t{control_sum_[i]} + m[i];
            control_sum_[i] = static_cast<std::uint32_t>(carry);
            carry >>= 32U;
        }
        compress(m);
    }
}

hash_gost::digest_type hash_gost::finish() {
    // The block is zero after its last byte.
    if (block_fill_ != 0) transform();
    Words length{};
    length[0] = static_cast<std::uint32_t>(message_length_ << 3U);
    length[1] = static_cast<std::uint32_t>(message_length_ >> 29U);
    length[2] = static_cast<std::uint32_t>(message_length_ >> 61U);
    compress(length);
    compress(control_sum_);
    return result();
}

hash_gost::digest_type hash_gost::result() const {
    digest_type digest;
    for (std::size_t i = 0; i < state_.size(); ++i)
        store_little(digest.data() + sizeof(std::uint32_t) * i, state_[i]);
    return digest;
}

}  // namespace kv::crypto::stream::hash
