#include "util/crc/GenericCrc.hpp"

#include <numeric>

#include "util/crc/CrcFolding.hpp"
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

/// The sum of `start` and the big-endian 16-bit words of `data`. For an odd length it is `start`.
std::uint16_t wordSum(Bytes data, std::uint16_t start) {
    if (data.size() % 2 != 0) return start;
    std::uint16_t sum = start;
    for (std::size_t i = 0; i < data.size(); i += 2)
        sum = static_cast<std::uint16_t>(sum + (data[i] << 8) + data[i + 1]);
    return sum;
}

template <const auto& table, class Word>
Word updateByReflectedTable(Word crc, Bytes data) {
    // The entry whose index has only the highest bit set is the polynomial.
    static constexpr Folding folding = reflectedFolding(table[table.size() / 2]);
    return updateFolded(crc, data, folding, crc, [](Word value, Bytes bytes) {
        return updateReflected(value, bytes, table);
    });
}

template <const auto& table, class Word>
Word updateByForwardTable(Word crc, Bytes data) {
    // The entry whose index has only the lowest bit set is the polynomial.
    static constexpr Folding folding = forwardFolding(table[1]);
    return updateFolded(crc, data, folding, reversedBytes(crc),
                        [](Word value, Bytes bytes) { return updateForward(value, bytes, table); });
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
    return updateByReflectedTable<crc8EepromTable>(seed, data);
}

std::uint16_t crc16Legacy(Bytes data, std::uint16_t seed) {
    return updateByReflectedTable<crc16LegacyTable>(seed, data);
}

std::uint16_t crc16Ccitt(Bytes data, std::uint16_t seed) {
    return updateByForwardTable<crc16CcittTable>(seed, data);
}

std::uint16_t crc16IbmSdlc(Bytes data, std::uint16_t seed) {
    static constexpr std::uint16_t polynomial = 0x1021;
    static constexpr Folding folding = reflectedFolding(reflect(polynomial));
    // The register shifts left over reflected bytes, so folding works on its mirror image.
    const std::uint16_t crc =
        updateFolded(seed, data, folding, reflect(seed), [](std::uint16_t value, Bytes bytes) {
            return updateBitwise<true>(value, bytes, polynomial);
        });
    return onesComplement(reflect(crc));
}

std::uint32_t crc32Forward(Bytes data, std::uint32_t seed) {
    return updateByForwardTable<crc32ForwardTable>(seed, data);
}

std::uint32_t crc32Reflected(Bytes data, std::uint32_t seed) {
    return onesComplement(updateByReflectedTable<crc32ReflectedTable>(seed, data));
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
