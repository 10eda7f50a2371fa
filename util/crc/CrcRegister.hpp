#pragma once

#include <array>
#include <climits>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>

/// The shift registers of the polynomial CRCs, bit by bit, and the tables that follow from them.
/// R. Williams, "A painless guide to CRC error detection algorithms", explains them all.
namespace Util::Crc {

template <std::unsigned_integral Word>
inline constexpr int widthOf = sizeof(Word) * CHAR_BIT;

/// The bits of `word` in reverse order.
template <std::unsigned_integral Word>
constexpr Word reflect(Word word) {
    Word reflected = 0;
    for (int bit = 0; bit < widthOf<Word>; ++bit) {
        reflected = static_cast<Word>(reflected << 1) | (word & 1);
        word = static_cast<Word>(word >> 1);
    }
    return reflected;
}

/// Shifts a register left by one bit.
template <std::unsigned_integral Word>
constexpr Word shiftForward(Word value, Word polynomial) {
    const bool carry = (value >> (widthOf<Word> - 1)) != 0;
    const Word shifted = static_cast<Word>(value << 1);
    return static_cast<Word>(carry ? shifted ^ polynomial : shifted);
}

/// Shifts a register right by one bit; the polynomial is reflected.
template <std::unsigned_integral Word>
constexpr Word shiftReflected(Word value, Word reflectedPolynomial) {
    const bool carry = (value & 1) != 0;
    const Word shifted = static_cast<Word>(value >> 1);
    return static_cast<Word>(carry ? shifted ^ reflectedPolynomial : shifted);
}

/// Table for a register that shifts left: entry i is the register after `Bits` shifts, beginning
/// with i in its top `Bits` bits.
template <int Bits, std::unsigned_integral Word>
constexpr std::array<Word, std::size_t{1} << Bits> forwardTable(Word polynomial) {
    std::array<Word, std::size_t{1} << Bits> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        Word entry = static_cast<Word>(static_cast<Word>(i) << (widthOf<Word> - Bits));
        for (int bit = 0; bit < Bits; ++bit) entry = shiftForward(entry, polynomial);
        table[i] = entry;
    }
    return table;
}

/// Table for a register that shifts right: entry i is the register after `Bits` shifts, beginning
/// with i.
template <int Bits, std::unsigned_integral Word>
constexpr std::array<Word, std::size_t{1} << Bits> reflectedTable(Word reflectedPolynomial) {
    std::array<Word, std::size_t{1} << Bits> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        Word entry = static_cast<Word>(i);
        for (int bit = 0; bit < Bits; ++bit) entry = shiftReflected(entry, reflectedPolynomial);
        table[i] = entry;
    }
    return table;
}

/// Updates a register that shifts left, with two table look-ups per byte, high nibble first.
template <std::unsigned_integral Word>
constexpr Word updateForward(Word crc, std::span<const std::uint8_t> data,
                             const std::array<Word, 16>& table) {
    constexpr int top = widthOf<Word> - 4;
    for (const std::uint8_t byte : data) {
        crc = static_cast<Word>(table[(crc >> top) ^ (byte >> 4)] ^ static_cast<Word>(crc << 4));
        crc = static_cast<Word>(table[(crc >> top) ^ (byte & 15)] ^ static_cast<Word>(crc << 4));
    }
    return crc;
}

/// Updates a register that shifts left, with one table look-up per byte.
template <std::unsigned_integral Word>
constexpr Word updateForward(Word crc, std::span<const std::uint8_t> data,
                             const std::array<Word, 256>& table) {
    constexpr int top = widthOf<Word> - 8;
    for (const std::uint8_t byte : data)
        crc = static_cast<Word>(table[(crc >> top) ^ byte] ^ static_cast<Word>(crc << 8));
    return crc;
}

/// Updates a register that shifts right, with two table look-ups per byte, low nibble first.
template <std::unsigned_integral Word>
constexpr Word updateReflected(Word crc, std::span<const std::uint8_t> data,
                               const std::array<Word, 16>& table) {
    for (const std::uint8_t byte : data) {
        crc = static_cast<Word>(table[(crc ^ byte) & 15] ^ (crc >> 4));
        crc = static_cast<Word>(table[(crc ^ (byte >> 4)) & 15] ^ (crc >> 4));
    }
    return crc;
}

/// Updates a register that shifts right, with one table look-up per byte.
template <std::unsigned_integral Word>
constexpr Word updateReflected(Word crc, std::span<const std::uint8_t> data,
                               const std::array<Word, 256>& table) {
    for (const std::uint8_t byte : data)
        crc = static_cast<Word>(table[(crc ^ byte) & 255] ^ (crc >> 8));
    return crc;
}

/// Updates a register that shifts left, bit by bit, without a table. The bits of each byte are
/// reversed first if the input is reflected.
template <bool IsInputReflected, std::unsigned_integral Word>
constexpr Word updateBitwise(Word crc, std::span<const std::uint8_t> data, Word polynomial) {
    for (const std::uint8_t byte : data) {
        const std::uint8_t ordered = IsInputReflected ? reflect(byte) : byte;
        crc = static_cast<Word>(crc ^ (Word{ordered} << (widthOf<Word> - 8)));
        for (int bit = 0; bit < 8; ++bit) crc = shiftForward(crc, polynomial);
    }
    return crc;
}

inline constexpr auto crc8EepromTable = reflectedTable<4>(std::uint8_t{0xE0});
static_assert(crc8EepromTable[1] == 0x1C && crc8EepromTable[8] == 0xE0);
inline constexpr auto crc16LegacyTable = reflectedTable<4>(std::uint16_t{0xA001});
static_assert(crc16LegacyTable[1] == 0xCC01 && crc16LegacyTable[8] == 0xA001);
inline constexpr auto crc16CcittTable = forwardTable<4>(std::uint16_t{0x1021});
static_assert(crc16CcittTable[1] == 0x1021 && crc16CcittTable[15] == 0xF1EF);
inline constexpr auto crc32ForwardTable = forwardTable<4>(std::uint32_t{0x04C11DB7});
static_assert(crc32ForwardTable[1] == 0x04C11DB7 && crc32ForwardTable[15] == 0x384FBDBD);
/// The polynomial of CRC-32/ISO-HDLC, reflected.
inline constexpr std::uint32_t crc32ReflectedPolynomial = 0xEDB88320;
inline constexpr auto crc32ReflectedTable = reflectedTable<8>(crc32ReflectedPolynomial);
static_assert(crc32ReflectedTable[1] == 0x77073096 && crc32ReflectedTable[255] == 0x2D02EF8D);

}  // namespace Util::Crc
