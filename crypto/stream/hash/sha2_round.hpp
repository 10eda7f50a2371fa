#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "crypto/stream/hash/roots.hpp"

/// A round of SHA-2. SHA-256 and SHA-512 differ in the word type, the rotations, the constants and
/// the number of rounds. FIPS 180-4, sections 4.1.2, 4.1.3, 4.2.2, 4.2.3, 6.2.2 and 6.4.2.
namespace kv::crypto::stream::hash {

template <class Word>
struct Sha2;

template <>
struct Sha2<std::uint32_t> {
    static constexpr std::size_t rounds = 64;
    /// The first 32 bits of the fractional parts of the cube roots of the first primes.
    static constexpr std::array<std::uint32_t, rounds> constants = [] {
        std::array<std::uint32_t, rounds> words{};
        const auto fractions = prime_root_fractions<3, 0>(std::make_index_sequence<rounds>());
        for (std::size_t i = 0; i < words.size(); ++i)
            words[i] = static_cast<std::uint32_t>(fractions[i] >> 32U);
        return words;
    }();
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
static_assert(Sha2<std::uint32_t>::constants[0] == 0x428A2F98 &&
              Sha2<std::uint32_t>::constants[63] == 0xC67178F2);

template <>
struct Sha2<unsigned long long> {
    static constexpr std::size_t rounds = 80;
    /// The first 64 bits of the fractional parts of the cube roots of the first primes.
    static constexpr std::array<std::uint64_t, rounds> constants =
        prime_root_fractions<3, 0>(std::make_index_sequence<rounds>());
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
static_assert(Sha2<unsigned long long>::constants[0] == 0x428A2F98D728AE22 &&
              Sha2<unsigned long long>::constants[79] == 0x6C44198C4A475817);

/// Round `Round`. `word_and_constant` is the sum of its message word and its constant.
template <std::size_t Round, class Word>
[[gnu::always_inline]] inline void sha2_round(std::array<Word, 8>& r, Word word_and_constant) {
    // The names of the registers rotate by one with every round.
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
    // The two terms of the choice have no bit in common, nor have those of the majority. So they
    // may be added, and few operations depend on the newest registers, a and e. g++ 12 generates
    // the fastest code for this order.
    h += word_and_constant;
    h += e & f;
    h += ~e & g;
    h += Sha2<Word>::sum_e(e);
    at(3) += h;
    h += (b & c) + (a & (b ^ c));
    h += Sha2<Word>::sum_a(a);
}

}  // namespace kv::crypto::stream::hash
