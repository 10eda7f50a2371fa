#pragma once

#include <climits>
#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

#include "util/crc/ByteList.hpp"

/// The fixed catalogue of checksums: seven polynomial CRCs, sums, and two interpretations of bytes
/// as a number. No function fails: every input, even an empty one, has a defined value. Bytes
/// are processed from first to last. CRC names in the comments are those of the public CRC
/// catalogue.
namespace Util::Crc::GenericCrc {

using Bytes = std::span<const std::uint8_t>;

/// The sum of `seed` and the bytes, wrapping at the width of the result.
std::uint8_t crc8Sum(Bytes data, std::uint8_t seed);
std::uint16_t crc16Sum(Bytes data, std::uint16_t seed);
std::uint32_t crc32Sum(Bytes data, std::uint32_t seed);

/// One's complement of the byte sum that starts at the one's complement of `seed`. With seed 0xFF
/// it is the checksum of an S-record.
std::uint8_t crc8OnesComplementSum(Bytes data, std::uint8_t seed);

/// Two's complement of the byte sum that starts at the two's complement of `seed`. With seed 0 it
/// is the checksum of an Intel HEX record.
std::uint8_t crc8TwosComplementSum(Bytes data, std::uint8_t seed);

/// The same sums over big-endian 16-bit words, without end-around carry. An input of odd length
/// yields the seed.
std::uint16_t crc16OnesComplementSumBE(Bytes data, std::uint16_t seed);
std::uint16_t crc16TwosComplementSumBE(Bytes data, std::uint16_t seed);

/// Polynomial 0x07, reflected, no final xor.
std::uint8_t crc8Eeprom(Bytes data, std::uint8_t seed);

/// Polynomial 0x8005, reflected, no final xor; with seed 0xFFFF CRC-16/MODBUS.
std::uint16_t crc16Legacy(Bytes data, std::uint16_t seed);

/// Polynomial 0x1021, not reflected, no final xor; with seed 0xFFFF CRC-16/IBM-3740.
std::uint16_t crc16Ccitt(Bytes data, std::uint16_t seed);

/// Polynomial 0x1021, reflected, final xor 0xFFFF; with seed 0xFFFF CRC-16/IBM-SDLC.
std::uint16_t crc16IbmSdlc(Bytes data, std::uint16_t seed);

/// Polynomial 0x04C11DB7, not reflected, no final xor; with seed 0xFFFFFFFF CRC-32/MPEG-2.
std::uint32_t crc32Forward(Bytes data, std::uint32_t seed);

/// Polynomial 0x04C11DB7, reflected, final xor 0xFFFFFFFF; with seed 0xFFFFFFFF CRC-32/ISO-HDLC.
std::uint32_t crc32Reflected(Bytes data, std::uint32_t seed);

/// The order of the bytes of a word in a memory.
enum class WordOrder : std::uint8_t { LittleEndian, BigEndian };

/// The sum of words as wide as the result, wrapping at that width. An incomplete last word is
/// filled up with bytes of 0.
std::uint16_t wordSum16(Bytes data, WordOrder order);
std::uint32_t wordSum32(Bytes data, WordOrder order);

/// Adler-32 (RFC 1950, section 8.2).
std::uint32_t adler32(Bytes data);

/// The checksum of J. Fletcher, "An Arithmetic Checksum for Serial Transmissions", IEEE
/// Transactions on Communications, 1982, with both sums beginning at 0: that of the bytes modulo
/// 255 in the low half, and that of its intermediate values in the high half.
std::uint16_t fletcher16(Bytes data);

/// The same over words of 16 bits, modulo 65535. An odd last byte is filled up with a byte of 0.
std::uint32_t fletcher32(Bytes data, WordOrder order);

/// The bytes interpreted as a 32-bit number, least significant byte first in the result.
///
/// @param order  1: the first byte of `data` is the least significant; 2: the last one is
///
/// More than four bytes are interpreted as several 32-bit numbers, which are added modulo 2^32.
ByteList interpretBytes(Bytes data, int order);

/// Unsigned word of `Bits` bits: 8, 16 or 32.
template <int Bits>
using CrcWord = std::conditional_t<Bits == 8, std::uint8_t,
                                   std::conditional_t<Bits == 16, std::uint16_t, std::uint32_t>>;

/// The bytes of `value`, least significant byte first.
template <class Word>
ByteList toByteList(Word value) {
    ByteList bytes(sizeof(Word));
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(value >> (CHAR_BIT * i));
    return bytes;
}

/// A checksum of `Bits` bits with fixed parameters. `computeCrc` computes it, `toBytes` returns it.
template <int Bits>
class genericCrcBase {
public:
    virtual ~genericCrcBase() = default;

    /// Computes the checksum of `length` bytes at `data`. It replaces any earlier one.
    virtual void computeCrc(const void* data, std::size_t length) = 0;

    /// The value in `Bits / 8` bytes, least significant byte first.
    ByteList toBytes() const { return toByteList(crcValue_); }

protected:
    static Bytes asBytes(const void* data, std::size_t length) {
        return {static_cast<const std::uint8_t*>(data), length};
    }

    CrcWord<Bits> crcValue_ = 0;
};

/// An entry of the catalogue: a calculation and its seed.
template <int Bits, auto Calculation, CrcWord<Bits> Seed>
class SeededCrc : public genericCrcBase<Bits> {
public:
    void computeCrc(const void* data, std::size_t length) final {
        this->crcValue_ = Calculation(this->asBytes(data, length), Seed);
    }
};

class crcCrc8_Standard final : public SeededCrc<8, crc8Sum, 0x00> {};
class crcCrc8_OnesComplement final : public SeededCrc<8, crc8OnesComplementSum, 0xFF> {};
class crcCrc8_TwosComplement final : public SeededCrc<8, crc8TwosComplementSum, 0x00> {};
class crcCrc8_Eeprom final : public SeededCrc<8, crc8Eeprom, 0x00> {};
class crcCrc16_Standard final : public SeededCrc<16, crc16Sum, 0x0000> {};
class crcCrc16_OnesComplement_BE final : public SeededCrc<16, crc16OnesComplementSumBE, 0xFFFF> {};
class crcCrc16_TwosComplement_BE final : public SeededCrc<16, crc16TwosComplementSumBE, 0x0000> {};
class crcCrc16_Legacy_Karst_Brae final : public SeededCrc<16, crc16Legacy, 0xFFFF> {};
class crcCrc16_Ccitt final : public SeededCrc<16, crc16Ccitt, 0xFFFF> {};
class crcCrc16_ibm_sdlc final : public SeededCrc<16, crc16IbmSdlc, 0xFFFF> {};
class crcCrc32_Standard final : public SeededCrc<32, crc32Sum, 0x00000000> {};
class crcCrc32_Tolmen final : public SeededCrc<32, crc32Forward, 0x00000000> {};
class crcCrc32_Vector_AUTOSAR final : public SeededCrc<32, crc32Reflected, 0xFFFFFFFF> {};
class crcCrc32_Ethernet_Mpeg2 final : public SeededCrc<32, crc32Forward, 0xFFFFFFFF> {};

}  // namespace Util::Crc::GenericCrc
