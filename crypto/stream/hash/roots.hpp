#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

/// Square and cube roots as fixed-point numbers, from which several standards take their constants.
/// They are computed with integers, bit by bit, so every digit is exact.
namespace kv::crypto::stream::hash {

/// A non-negative integer, least significant limb first, wide enough for the cube of a root with 64
/// fractional bits.
using Limbs = std::array<std::uint32_t, 7>;

constexpr Limbs product(const Limbs& left, const Limbs& right) {
    constexpr unsigned limbBits = 32;
    Limbs result{};
    for (std::size_t i = 0; i < left.size(); ++i) {
        if (left[i] == 0) continue;
        std::uint64_t carry = 0;
        for (std::size_t j = 0; i + j < result.size(); ++j) {
            const std::uint64_t sum = result[i + j] + std::uint64_t{left[i]} * right[j] + carry;
            result[i + j] = static_cast<std::uint32_t>(sum);
            carry = sum >> limbBits;
        }
    }
    return result;
}

constexpr bool is_at_most(const Limbs& left, const Limbs& right) {
    for (std::size_t i = left.size(); i-- > 0;)
        if (left[i] != right[i]) return left[i] < right[i];
    return true;
}

/// The first 64 bits of the fractional part of the root of degree 2 or 3 of `number`, rounded down.
/// The root must be below 8.
constexpr std::uint64_t fixed_root(std::uint32_t number, int degree) {
    constexpr std::size_t fractionLimbs = 2;
    constexpr unsigned highestBit = 67;
    Limbs target{};
    target[fractionLimbs * static_cast<std::size_t>(degree)] = number;
    Limbs root{};
    for (unsigned bit = highestBit; bit-- > 0;) {
        Limbs candidate = root;
        candidate[bit / 32] |= std::uint32_t{1} << (bit % 32);
        Limbs power = product(candidate, candidate);
        if (degree == 3) power = product(power, candidate);
        if (is_at_most(power, target)) root = candidate;
    }
    return std::uint64_t{root[1]} << 32U | root[0];
}

/// 2^30 times the root of degree 2 or 3 of `number`, rounded down. Square roots are the round
/// constants of MD4, SHA-1 and the left line of RIPEMD, cube roots those of its right line.
constexpr std::uint32_t root_times_2_to_30(std::uint32_t number, int degree) {
    // The largest r with r^degree <= number * 2^(30 * degree).
    constexpr unsigned fractionBits = 30;
    std::uint64_t root = 0;
    for (unsigned bit = 32; bit-- > 0;) {
        const std::uint64_t candidate = root | std::uint64_t{1} << bit;
        Limbs value{static_cast<std::uint32_t>(candidate)};
        Limbs power = product(value, value);
        if (degree == 3) power = product(power, value);
        Limbs target{};
        const unsigned shift = fractionBits * static_cast<unsigned>(degree);
        const std::uint64_t shifted = std::uint64_t{number} << (shift % 32);
        target[shift / 32] = static_cast<std::uint32_t>(shifted);
        target[shift / 32 + 1] = static_cast<std::uint32_t>(shifted >> 32U);
        if (is_at_most(power, target)) root = candidate;
    }
    return static_cast<std::uint32_t>(root);
}

static_assert(root_times_2_to_30(2, 2) == 0x5A827999);
static_assert(root_times_2_to_30(2, 3) == 0x50A28BE6);

/// The first `Count` prime numbers.
template <std::size_t Count>
constexpr std::array<std::uint32_t, Count> first_primes() {
    std::array<std::uint32_t, Count> primes{};
    std::size_t found = 0;
    for (std::uint32_t candidate = 2; found < Count; ++candidate) {
        bool isPrime = true;
        for (std::size_t i = 0; i < found; ++i) isPrime = isPrime && candidate % primes[i] != 0;
        if (isPrime) primes[found++] = candidate;
    }
    return primes;
}

/// `fixed_root` of prime number `Index`, counted from 0. Each is a separate constant, since
/// compilers limit the work of one constant expression.
template <std::size_t Index, int Degree>
inline constexpr std::uint64_t prime_root_fraction = fixed_root(first_primes<Index + 1>()[Index],
                                                                Degree);

/// `fixed_root` of `sizeof...(indices)` primes, beginning with prime number `First`.
template <int Degree, std::size_t First, std::size_t... indices>
constexpr auto prime_root_fractions(std::index_sequence<indices...> /*numbers*/) {
    return std::array{prime_root_fraction<First + indices, Degree>...};
}

}  // namespace kv::crypto::stream::hash
