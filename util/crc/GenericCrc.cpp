#include "util/crc/GenericCrc.hpp"

#include <algorithm>
#include <array>
#include <numeric>

#include "util/crc/Crc32Instructions.hpp"
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

/// The word whose bytes begin at `bytes`.
template <class Word, WordOrder Order>
Word wordAt(const std::uint8_t* bytes) {
    Word word = 0;
    for (std::size_t i = 0; i < sizeof(Word); ++i) {
        const std::size_t place = Order == WordOrder::LittleEndian ? i : sizeof(Word) - 1 - i;
        word = static_cast<Word>(word | static_cast<Word>(Word{bytes[i]} << (CHAR_BIT * place)));
    }
    return word;
}

/// Hands `take` the words of `data`, an incomplete last one filled up with bytes of 0.
template <class Word, WordOrder Order, class Take>
void forWords(Bytes data, Take take) {
    const std::size_t whole = data.size() - data.size() % sizeof(Word);
    for (std::size_t i = 0; i < whole; i += sizeof(Word)) take(wordAt<Word, Order>(&data[i]));
    if (whole == data.size()) return;
    std::array<std::uint8_t, sizeof(Word)> last{};
    std::ranges::copy(data.subspan(whole), last.begin());
    take(wordAt<Word, Order>(last.data()));
}

template <class Word, WordOrder Order>
Word sumOfWords(Bytes data) {
    Word sum = 0;
    forWords<Word, Order>(data, [&sum](Word word) { sum = static_cast<Word>(sum + word); });
    return sum;
}

/// The two sums of Adler's and Fletcher's checksums.
struct RunningSums {
    std::uint32_t ofData;
    std::uint32_t ofSums;
};

/// Words of `Word` bits after which sums that began below `modulus` may pass 32 bits: the second
/// one grows with the square of their number.
template <class Word>
constexpr std::size_t longestRun(std::uint64_t modulus) {
    constexpr std::uint64_t highest = 0xFFFFFFFF;
    constexpr std::uint64_t word = static_cast<Word>(~Word{0});
    std::uint64_t count = 0;
    while ((modulus - 1) * (count + 2) + word * (count + 1) * (count + 2) / 2 <= highest) ++count;
    return static_cast<std::size_t>(count);
}

template <std::uint32_t Modulus, class Word, WordOrder Order>
RunningSums runningSums(Bytes data, RunningSums sums) {
    constexpr std::size_t run = longestRun<Word>(Modulus) * sizeof(Word);
    while (!data.empty()) {
        const Bytes part = data.first(std::min(run, data.size()));
        forWords<Word, Order>(part, [&sums](Word word) {
            sums.ofData += word;
            sums.ofSums += sums.ofData;
        });
        sums = {sums.ofData % Modulus, sums.ofSums % Modulus};
        data = data.subspan(part.size());
    }
    return sums;
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
    static constexpr Folding folding = reflectedFolding(crc32ReflectedPolynomial);
    return onesComplement(
        updateFolded(seed, data, folding, seed, [](std::uint32_t value, Bytes bytes) {
            return hasCrc32Instructions() ? updateByInstructions(value, bytes)
                                          : updateReflected(value, bytes, crc32ReflectedTable);
        }));
}

std::uint16_t wordSum16(Bytes data, WordOrder order) {
    return order == WordOrder::LittleEndian
               ? sumOfWords<std::uint16_t, WordOrder::LittleEndian>(data)
               : sumOfWords<std::uint16_t, WordOrder::BigEndian>(data);
}

std::uint32_t wordSum32(Bytes data, WordOrder order) {
    return order == WordOrder::LittleEndian
               ? sumOfWords<std::uint32_t, WordOrder::LittleEndian>(data)
               : sumOfWords<std::uint32_t, WordOrder::BigEndian>(data);
}

std::uint32_t adler32(Bytes data) {
    constexpr std::uint32_t modulus = 65521;
    const RunningSums sums =
        runningSums<modulus, std::uint8_t, WordOrder::LittleEndian>(data, {1, 0});
    return sums.ofSums << 16U | sums.ofData;
}

std::uint16_t fletcher16(Bytes data) {
    constexpr std::uint32_t modulus = 255;
    const RunningSums sums =
        runningSums<modulus, std::uint8_t, WordOrder::LittleEndian>(data, {0, 0});
    return static_cast<std::uint16_t>(sums.ofSums << 8U | sums.ofData);
}

std::uint32_t fletcher32(Bytes data, WordOrder order) {
    constexpr std::uint32_t modulus = 65535;
    const RunningSums sums =
        order == WordOrder::LittleEndian
            ? runningSums<modulus, std::uint16_t, WordOrder::LittleEndian>(data, {0, 0})
            : runningSums<modulus, std::uint16_t, WordOrder::BigEndian>(data, {0, 0});
    return sums.ofSums << 16U | sums.ofData;
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
