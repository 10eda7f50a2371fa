#include "crypto/stream/hash/hash_md.hpp"

#include <bit>
#include <utility>

#include "crypto/stream/hash/roots.hpp"

namespace kv::crypto::stream::hash {

namespace {

constexpr std::size_t wordsInBlock = 16;
using Words = std::array<std::uint32_t, wordsInBlock>;

Words little_endian_words(const unsigned char* block) {
    Words words;
    for (std::size_t i = 0; i < words.size(); ++i)
        words[i] = load_little<std::uint32_t>(block + sizeof(std::uint32_t) * i);
    return words;
}

/// The registers of MD4 and MD5. A step writes a, and then the names rotate by one: a becomes d, d
/// becomes c. The step is a compile-time constant, so the renaming costs no instruction.
struct Registers {
    std::array<std::uint32_t, 4> r;

    template <std::size_t Step, std::size_t Name>
    std::uint32_t& at() {
        return r[(Name + 4 - Step % 4) % 4];
    }
};

/// Calls `step` for the steps 0 to `Count` - 1, with the number as a compile-time constant.
template <std::size_t Count, class Step>
[[gnu::always_inline]] inline void run_steps(Step step) {
    [&]<std::size_t... steps>(std::index_sequence<steps...>) {
        (step(std::integral_constant<std::size_t, steps>()), ...);
    }
    (std::make_index_sequence<Count>());
}

// RFC 1320, section 3.4.

constexpr std::array<std::array<int, 4>, 3> md4Shifts{
    {{3, 7, 11, 19}, {3, 5, 9, 13}, {3, 9, 11, 15}}};
constexpr std::array<std::uint32_t, 3> md4Constants{0, root_times_2_to_30(2, 2),
                                                    root_times_2_to_30(3, 2)};
constexpr std::array<std::array<std::size_t, wordsInBlock>, 3> md4Orders{
    {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15},
     {0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15},
     {0, 8, 4, 12, 2, 10, 6, 14, 1, 9, 5, 13, 3, 11, 7, 15}}};

template <std::size_t Step>
[[gnu::always_inline]] inline void md4_step(Registers& registers, const Words& x) {
    constexpr std::size_t round = Step / wordsInBlock;
    std::uint32_t& a = registers.at<Step, 0>();
    const std::uint32_t b = registers.at<Step, 1>();
    const std::uint32_t c = registers.at<Step, 2>();
    const std::uint32_t d = registers.at<Step, 3>();
    a += x[md4Orders[round][Step % wordsInBlock]] + md4Constants[round];
    if constexpr (round == 0)
        a += d ^ (b & (c ^ d));
    else if constexpr (round == 1)
        // The two terms of the majority have no bit in common, so they may be added. Only one of
        // them then depends on the newest register, b.
        a += (c & d) + (b & (c ^ d));
    else
        a += b ^ (c ^ d);
    a = std::rotl(a, md4Shifts[round][Step % 4]);
}

// RFC 1321, section 3.4. The constants are its table: the integer part of 4294967296 |sin(i)|.

constexpr std::array<std::uint32_t, 64> md5Sines{
    0xD76AA478, 0xE8C7B756, 0x242070DB, 0xC1BDCEEE, 0xF57C0FAF, 0x4787C62A, 0xA8304613, 0xFD469501,
    0x698098D8, 0x8B44F7AF, 0xFFFF5BB1, 0x895CD7BE, 0x6B901122, 0xFD987193, 0xA679438E, 0x49B40821,
    0xF61E2562, 0xC040B340, 0x265E5A51, 0xE9B6C7AA, 0xD62F105D, 0x02441453, 0xD8A1E681, 0xE7D3FBC8,
    0x21E1CDE6, 0xC33707D6, 0xF4D50D87, 0x455A14ED, 0xA9E3E905, 0xFCEFA3F8, 0x676F02D9, 0x8D2A4C8A,
    0xFFFA3942, 0x8771F681, 0x6D9D6122, 0xFDE5380C, 0xA4BEEA44, 0x4BDECFA9, 0xF6BB4B60, 0xBEBFBC70,
    0x289B7EC6, 0xEAA127FA, 0xD4EF3085, 0x04881D05, 0xD9D4D039, 0xE6DB99E5, 0x1FA27CF8, 0xC4AC5665,
    0xF4292244, 0x432AFF97, 0xAB9423A7, 0xFC93A039, 0x655B59C3, 0x8F0CCC92, 0xFFEFF47D, 0x85845DD1,
    0x6FA87E4F, 0xFE2CE6E0, 0xA3014314, 0x4E0811A1, 0xF7537E82, 0xBD3AF235, 0x2AD7D2BB, 0xEB86D391,
};
constexpr std::array<std::array<int, 4>, 4> md5Shifts{
    {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}}};
/// Message word of step i: factor times i plus offset, modulo 16.
constexpr std::array<std::size_t, 4> md5OrderFactors{1, 5, 3, 7};
constexpr std::array<std::size_t, 4> md5OrderOffsets{0, 1, 5, 0};

template <std::size_t Step>
[[gnu::always_inline]] inline void md5_step(Registers& registers, const Words& x) {
    constexpr std::size_t round = Step / wordsInBlock;
    constexpr std::size_t word =
        (md5OrderFactors[round] * Step + md5OrderOffsets[round]) % wordsInBlock;
    std::uint32_t& a = registers.at<Step, 0>();
    const std::uint32_t b = registers.at<Step, 1>();
    const std::uint32_t c = registers.at<Step, 2>();
    const std::uint32_t d = registers.at<Step, 3>();
    a += x[word] + md5Sines[Step];
    if constexpr (round == 0) {
        a += d ^ (b & (c ^ d));
    } else if constexpr (round == 1) {
        // The terms have no bit in common, and the first does not depend on the newest register, b.
        a += c & ~d;
        a += b & d;
    } else if constexpr (round == 2) {
        a += b ^ (c ^ d);
    } else {
        a += c ^ (b | ~d);
    }
    a = std::rotl(a, md5Shifts[round][Step % 4]) + b;
}

}  // namespace

void hash_md4::transform_blocks(const unsigned char* blocks, std::size_t count) {
    constexpr std::size_t steps = 48;
    for (; count != 0; --count, blocks += block_bytes) {
        const Words x = little_endian_words(blocks);
        Registers registers{state_};
        run_steps<steps>([&](auto step) { md4_step<step>(registers, x); });
        for (std::size_t i = 0; i < state_.size(); ++i) state_[i] += registers.r[i];
    }
}

void hash_md5::transform_blocks(const unsigned char* blocks, std::size_t count) {
    constexpr std::size_t steps = 64;
    for (; count != 0; --count, blocks += block_bytes) {
        const Words x = little_endian_words(blocks);
        Registers registers{state_};
        run_steps<steps>([&](auto step) { md5_step<step>(registers, x); });
        for (std::size_t i = 0; i < state_.size(); ++i) state_[i] += registers.r[i];
    }
}

namespace {

/// RFC 1319, section 3.2: a permutation of 0 to 255 derived from the digits of pi.
constexpr std::array<unsigned char, 256> PI_SUBST{
    41,  46,  67,  201, 162, 216, 124, 1,   61,  54,  84,  161, 236, 240, 6,   19,  98,  167, 5,
    243, 192, 199, 115, 140, 152, 147, 43,  217, 188, 76,  130, 202, 30,  155, 87,  60,  253, 212,
    224, 22,  103, 66,  111, 24,  138, 23,  229, 18,  190, 78,  196, 214, 218, 158, 222, 73,  160,
    251, 245, 142, 187, 47,  238, 122, 169, 104, 121, 145, 21,  178, 7,   63,  148, 194, 16,  137,
    11,  34,  95,  33,  128, 127, 93,  154, 90,  144, 50,  39,  53,  62,  204, 231, 191, 247, 151,
    3,   255, 25,  48,  179, 72,  165, 181, 209, 215, 94,  146, 42,  172, 86,  170, 198, 79,  184,
    56,  210, 150, 164, 125, 182, 118, 252, 107, 226, 156, 116, 4,   241, 69,  157, 112, 89,  100,
    113, 135, 32,  134, 91,  207, 101, 230, 45,  168, 2,   27,  96,  37,  173, 174, 176, 185, 246,
    28,  70,  97,  105, 52,  64,  126, 15,  85,  71,  163, 35,  221, 81,  175, 58,  195, 92,  249,
    206, 186, 197, 234, 38,  44,  83,  13,  110, 133, 40,  132, 9,   211, 223, 205, 244, 65,  129,
    77,  82,  106, 220, 55,  200, 108, 193, 171, 250, 36,  225, 123, 8,   12,  189, 177, 74,  120,
    136, 149, 139, 227, 99,  232, 109, 233, 203, 213, 254, 59,  0,   29,  57,  242, 239, 183, 14,
    102, 88,  208, 228, 166, 119, 114, 248, 235, 117, 75,  10,  49,  68,  80,  180, 143, 237, 31,
    26,  219, 153, 141, 51,  159, 17,  131, 20,
};

constexpr bool is_permutation_of_bytes(const std::array<unsigned char, 256>& table) {
    std::array<bool, 256> seen{};
    for (const unsigned char entry : table) seen[entry] = true;
    return std::ranges::all_of(seen, [](bool isSeen) { return isSeen; });
}
static_assert(is_permutation_of_bytes(PI_SUBST));

/// The same in words: each of the 864 dependent steps of a block needs one conversion less.
constexpr auto PI_SUBST_WORDS = [] {
    std::array<std::uint32_t, PI_SUBST.size()> words{};
    std::ranges::copy(PI_SUBST, words.begin());
    return words;
}();

}  // namespace

void hash_md2::reset() {
    hash_base::reset();
    checksum_.fill(0);
}

void hash_md2::transform_blocks(const unsigned char* blocks, std::size_t count) {
    constexpr unsigned passes = 18;
    for (; count != 0; --count, blocks += block_bytes) {
        unsigned last = checksum_.back();
        for (std::size_t i = 0; i < block_bytes; ++i) {
            state_[block_bytes + i] = blocks[i];
            state_[2 * block_bytes + i] = static_cast<unsigned char>(blocks[i] ^ state_[i]);
            last = checksum_[i] ^= PI_SUBST[blocks[i] ^ last];
        }
        std::array<std::uint32_t, 3 * block_bytes> state;
        std::ranges::copy(state_, state.begin());
        std::uint32_t carried = 0;
        for (unsigned pass = 0; pass < passes; ++pass) {
#pragma GCC unroll 48
            for (std::uint32_t& x : state) {
                x ^= PI_SUBST_WORDS[carried];
                carried = x;
            }
            carried = (carried + pass) % PI_SUBST.size();
        }
        for (std::size_t i = 0; i < state.size(); ++i)
            state_[i] = static_cast<unsigned char>(state[i]);
    }
}

hash_md2::digest_type hash_md2::finish() {
    const std::size_t missing = block_bytes - block_fill_;
    std::fill_n(block_.begin() + static_cast<std::ptrdiff_t>(block_fill_), missing,
                static_cast<unsigned char>(missing));
    transform();
    block_ = checksum_;
    transform();
    return result();
}

hash_md2::digest_type hash_md2::result() const {
    digest_type digest;
    std::copy_n(state_.begin(), digest.size(), digest.begin());
    return digest;
}

}  // namespace kv::crypto::stream::hash
