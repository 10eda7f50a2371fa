#include "util/crc/GenericCrc.hpp"

#include <numeric>

#include "util/crc/CrcRegister.hpp"

namespace Util::Crc::GenericCrc {

namespace {

template <class Word>
Word byteSum(Bytes data, Word seed) {
    return std::accumulate(data.begin(), data.end(), seed, [](Word sum, std::uint8_t byte) {
        return static_cast<Word>(sum + byte);
    });
}

template <class Word>
Word onesComplement(Word value) {
    return static_cast<Word>(~value);
}

template <class Word>
Word twosComplement(Word value) {
    return static_cast<Word>(Word{0} - value);
}

/// Sum of big-endian 16-bit words from `start` on; nothing is added for an odd length.
std::uint16_t wordSum(Bytes data, std::uint16_t start) {
    if (data.size() % 2 != 0) return start;
    std::uint16_t sum = start;
    for (std::size_t i = 0; i < data.size(); i += 2)
        sum = static_cast<std::uint16_t>(sum + (data[i] << 8) + data[i + 1]);
    return sum;
}

}  // namespace

std::uint8_t crc8Sum(Bytes data, std::uint8_t seed) {
    return byteSum(data, seed);
}

std::uint16_t crc16Sum(Bytes data, std::uint16_t seed) {
    return byteSum(data, seed);
}

std::uint32_t crc32Sum(Bytes data, std::uint32_t seed) {
    return byteSum(data, seed);
}

std::uint8_t crc8OnesComplementSum(Bytes data, std::uint8_t seed) {
    return onesComplement(byteSum(data, onesComplement(seed)));
}

std::uint8_t crc8TwosComplementSum(Bytes data, std::uint8_t seed) {
    return twosComplement(byteSum(data, twosComplement(seed)));
}

std::uint16_t crc16OnesComplementSumBE(Bytes data, std::uint16_t seed) {
    return onesComplement(wordSum(data, onesComplement(seed)));
}

std::uint16_t crc16TwosComplementSumBE(Bytes data, std::uint16_t seed) {
    return twosComplement(wordSum(data, twosComplement(seed)));
}

std::uint8_t crc8Eeprom(Bytes data, std::uint8_t seed) {
    return updateReflected(seed, data, crc8EepromTable);
}

std::uint16_t crc16Legacy(Bytes data, std::uint16_t seed) {
    return updateReflected(seed, data, crc16LegacyTable);
}

std::uint16_t crc16Ccitt(Bytes data, std::uint16_t seed) {
    return updateForward(seed, data, crc16CcittTable);
}

std::uint16_t crc16IbmSdlc(Bytes data, std::uint16_t seed) {
    const std::uint16_t crc = updateBitwise<true>(seed, data, std::uint16_t{0x1021});
    return onesComplement(reflect(crc));
}

std::uint32_t crc32Forward(Bytes data, std::uint32_t seed) {
    return updateForward(seed, data, crc32ForwardTable);
}

std::uint32_t crc32Reflected(Bytes data, std::uint32_t seed) {
    return onesComplement(updateReflected(seed, data, crc32ReflectedTable));
}

ByteList interpretBytes(Bytes data, int order) {
    std::uint32_t sum = 0;
    const std::size_t count = data.size();
    for (std::size_t k = 0; k < count; ++k) {
        const std::uint32_t byte = data[order == 1 ? k : count - 1 - k];
        sum += byte << (CHAR_BIT * (k % 4));
    }
    return toByteList(sum);
}

}  // namespace Util::Crc::GenericCrc
