#pragma once

#include <array>
#include <climits>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>

#include "util/crc/CrcRegister.hpp"

/// Polynomial CRCs of long data: all but the last bytes are folded into sixteen bytes that leave
/// the same remainder, 64 bytes at a time, by carry-less multiplication. V. Gopal et al.,
/// "Fast CRC Computation for Generic Polynomials Using PCLMULQDQ Instruction", Intel, 2009.
namespace Util::Crc {

/// The multipliers of one polynomial. Sixteen bytes move forward by n bits if each of their halves
/// is multiplied by a power of x modulo the polynomial: x^n for the lower half, x^(n + 64) for the
/// upper one.
struct Folding {
    using Halves = std::array<std::uint64_t, 2>;
    bool isReflected;
    Halves by64Bytes;
    Halves by16Bytes;
};

/// x to the power of `exponent`, modulo `polynomial`.
template <std::unsigned_integral Word>
constexpr std::uint64_t powerOfX(int exponent, Word polynomial) {
    Word power = 1;
    for (int i = 0; i < exponent; ++i) power = shiftForward(power, polynomial);
    return power;
}

/// For registers that shift left. `Halves` begins with the multiplier of the lower half.
template <std::unsigned_integral Word>
constexpr Folding forwardFolding(Word polynomial) {
    const auto halves = [&](int bits) {
        return Folding::Halves{powerOfX(bits, polynomial), powerOfX(bits + 64, polynomial)};
    };
    return {false, halves(64 * 8), halves(16 * 8)};
}

/// For registers that shift right. `Halves` begins with the multiplier of the upper half, and each
/// exponent is one less, since the product of reflected numbers has one factor x too many.
template <std::unsigned_integral Word>
constexpr Folding reflectedFolding(Word reflectedPolynomial) {
    const Word polynomial = reflect(reflectedPolynomial);
    const auto halves = [&](int bits) {
        return Folding::Halves{reflect(powerOfX(bits + 64 - 1, polynomial)),
                               reflect(powerOfX(bits - 1, polynomial))};
    };
    return {true, halves(64 * 8), halves(16 * 8)};
}

struct Folded {
    /// Bytes that leave in a register that starts at 0 what the folded data would have left.
    std::array<std::uint8_t, 16> remainder;
    /// The data after the folded part, less than sixteen bytes.
    std::span<const std::uint8_t> rest;
};

/// True if the CPU has carry-less multiplication. `fold` must not be called otherwise.
bool canFold();

/// Data shorter than this is not folded.
inline constexpr std::size_t shortestFolded = 64;

/// Folds `data` after xoring `start` into its first eight bytes, lowest byte first.
Folded fold(std::span<const std::uint8_t> data, std::uint64_t start, const Folding& folding);

/// The bytes of a register that shifts left, as `fold` takes them.
template <std::unsigned_integral Word>
constexpr std::uint64_t reversedBytes(Word crc) {
    std::uint64_t reversed = 0;
    for (int shift = 0; shift < widthOf<Word>; shift += CHAR_BIT)
        reversed = reversed << CHAR_BIT | ((crc >> shift) & UCHAR_MAX);
    return reversed;
}

/// Updates the register `crc` with `data` by `rule`. Long data is folded first.
///
/// @param start  the value of `crc` as `fold` takes it
template <std::unsigned_integral Word, class Rule>
Word updateFolded(Word crc, std::span<const std::uint8_t> data, const Folding& folding,
                  std::uint64_t start, Rule rule) {
    if (data.size() < shortestFolded || !canFold()) return rule(crc, data);
    const Folded folded = fold(data, start, folding);
    return rule(rule(Word{0}, folded.remainder), folded.rest);
}

}  // namespace Util::Crc
