#include "util/records/Steps.hpp"

#if defined(__x86_64__) && defined(__SSE2__)

#include <emmintrin.h>

#include <array>
#include <cstring>

namespace Util::Records {

namespace {

constexpr std::size_t laneCount = 16;

__m128i load(const void* from) {
    return _mm_loadu_si128(static_cast<const __m128i*>(from));
}

void store(void* to, __m128i vector) {
    _mm_storeu_si128(static_cast<__m128i*>(to), vector);
}

template <class Word>
std::uint64_t loadWord(const std::uint8_t* from) {
    Word word;
    std::memcpy(&word, from, sizeof word);
    return word;
}

/// 32 lanes of ones and 32 of zeros. From lane 32 - n on, the first n lanes are ones.
constexpr auto maskLanes = [] {
    std::array<std::uint8_t, 4 * laneCount> lanes{};
    for (std::size_t i = 0; i < 2 * laneCount; ++i) lanes[i] = 0xFF;
    return lanes;
}();

/// The characters under the ones of `mask`, and digits 0 in place of the others.
__m128i onlyDigits(__m128i characters, __m128i mask) {
    return _mm_or_si128(_mm_and_si128(characters, mask),
                        _mm_andnot_si128(mask, _mm_set1_epi8('0')));
}

/// The values of 16 digits, above 15 in each lane without a digit of the case.
template <DigitCase Case>
__m128i valuesOf(__m128i digits) {
    // 0 to 9 become 0xF6 to 0xFF, where whatever is lower saturates to values above 15.
    const __m128i high = _mm_add_epi8(digits, _mm_set1_epi8(static_cast<char>(0xFF - '9')));
    const __m128i decimal =
        _mm_sub_epi8(_mm_subs_epu8(high, _mm_set1_epi8(6)), _mm_set1_epi8(static_cast<char>(0xF0)));
    // One bit distinguishes a letter from its capital.
    constexpr char caseBit = 'a' ^ 'A';
    const bool isAny = Case == DigitCase::Any;
    const __m128i small = isAny ? _mm_or_si128(digits, _mm_set1_epi8(caseBit)) : digits;
    const __m128i letter =
        _mm_adds_epu8(_mm_sub_epi8(small, _mm_set1_epi8(isAny ? 'a' : 'A')), _mm_set1_epi8(10));
    return _mm_min_epu8(decimal, letter);
}

/// Makes a byte of each pair of values, in the low half of a lane of 16 bits.
__m128i pairsOf(__m128i values) {
    // The product has the byte in its upper half, the value of the first digit times 16 in front.
    constexpr short sixteenAndOne = 0x1001;
    return _mm_srli_epi16(_mm_mullo_epi16(values, _mm_set1_epi16(sixteenAndOne)), 8);
}

/// The upper-case digits of values below 16.
__m128i digitsOf(__m128i values) {
    const __m128i isLetter = _mm_cmpgt_epi8(values, _mm_set1_epi8(9));
    const __m128i pastNine = _mm_and_si128(isLetter, _mm_set1_epi8('A' - '0' - 10));
    return _mm_add_epi8(_mm_add_epi8(values, _mm_set1_epi8('0')), pastNine);
}

/// The first `size` of 16 bytes, followed by zeros. Reads no byte beyond: they may be the last ones
/// of an image.
__m128i loadFirst(const std::uint8_t* bytes, std::size_t size) {
    std::uint64_t low = 0;
    std::uint64_t high = 0;
    if (size >= 8) {
        low = loadWord<std::uint64_t>(bytes);
        if (size > 8) high = loadWord<std::uint64_t>(bytes + size - 8) >> (8 * (16 - size));
    } else if (size >= 4) {
        low = loadWord<std::uint32_t>(bytes) | loadWord<std::uint32_t>(bytes + size - 4)
                                                   << (8 * (size - 4));
    } else {
        for (std::size_t i = 0; i < size; ++i) low |= std::uint64_t{bytes[i]} << (8 * i);
    }
    return _mm_set_epi64x(static_cast<long long>(high), static_cast<long long>(low));
}

template <DigitCase Case>
class Sse2Lanes {
public:
    template <std::size_t Bytes>
    std::uint64_t readFields(const char* digits, const char* checksumDigits) {
        constexpr int checksumLane = 7;
        std::uint16_t checksum = 0;
        std::memcpy(&checksum, checksumDigits, sizeof checksum);
        __m128i characters = onlyDigits(load(digits), firstLanes(2 * Bytes));
        characters = _mm_insert_epi16(characters, checksum, checksumLane);
        const __m128i bytes = _mm_packus_epi16(pairsOf(read(characters)), _mm_setzero_si128());
        add(bytes);
        const auto all = static_cast<std::uint64_t>(_mm_cvtsi128_si64(bytes));
        return __builtin_bswap64(all) >> (8 * (sizeof all - Bytes));
    }

    void readData(std::uint8_t* out, const char* digits, std::size_t size) {
        for (; size >= laneCount; size -= laneCount, out += laneCount, digits += 2 * laneCount)
            readBytes(out, load(digits), load(digits + laneCount));
        if (size == 0) return;
        const std::uint8_t* const mask = maskLanes.data() + 2 * (laneCount - size);
        readBytes(out, onlyDigits(load(digits), load(mask)),
                  onlyDigits(load(digits + laneCount), load(mask + laneCount)));
    }

    char* writeFields(char* out, std::uint64_t fields, std::size_t bytes) {
        const std::uint64_t inOrder = __builtin_bswap64(fields << (8 * (sizeof fields - bytes)));
        const __m128i vector = _mm_cvtsi64_si128(static_cast<long long>(inOrder));
        add(vector);
        store(out, digitsOf(_mm_unpacklo_epi8(highValues(vector), lowValues(vector))));
        return out + 2 * bytes;
    }

    char* writeData(char* out, std::span<const std::uint8_t> data) {
        const std::uint8_t* bytes = data.data();
        std::size_t size = data.size();
        for (; size >= laneCount; size -= laneCount, out += 2 * laneCount, bytes += laneCount)
            writeBytes(out, load(bytes));
        if (size != 0) writeBytes(out, loadFirst(bytes, size));
        return out + 2 * size;
    }

    bool areDigits() const {
        // Whatever exceeds 15 gets the highest bit.
        return _mm_movemask_epi8(_mm_adds_epu8(greatest_, _mm_set1_epi8(0x7F - 15))) == 0;
    }

    std::uint8_t sum() const {
        return static_cast<std::uint8_t>(
            _mm_cvtsi128_si32(_mm_add_epi64(sums_, _mm_unpackhi_epi64(sums_, sums_))));
    }

private:
    static __m128i firstLanes(std::size_t count) {
        return load(maskLanes.data() + 2 * laneCount - count);
    }
    static __m128i lowValues(__m128i bytes) { return _mm_and_si128(bytes, _mm_set1_epi8(15)); }
    static __m128i highValues(__m128i bytes) { return lowValues(_mm_srli_epi16(bytes, 4)); }

    __m128i read(__m128i digits) {
        const __m128i values = valuesOf<Case>(digits);
        greatest_ = _mm_max_epu8(greatest_, values);
        return values;
    }

    void readBytes(std::uint8_t* out, __m128i first, __m128i second) {
        const __m128i bytes = _mm_packus_epi16(pairsOf(read(first)), pairsOf(read(second)));
        add(bytes);
        store(out, bytes);
    }

    void writeBytes(char* out, __m128i bytes) {
        const __m128i high = digitsOf(highValues(bytes));
        const __m128i low = digitsOf(lowValues(bytes));
        add(bytes);
        store(out, _mm_unpacklo_epi8(high, low));
        store(out + laneCount, _mm_unpackhi_epi8(high, low));
    }

    void add(__m128i bytes) {
        sums_ = _mm_add_epi64(sums_, _mm_sad_epu8(bytes, _mm_setzero_si128()));
    }

    __m128i greatest_ = _mm_setzero_si128();  ///< of the values of all digits, lane by lane
    __m128i sums_ = _mm_setzero_si128();      ///< of the bytes of each half
};

}  // namespace

DataRun Sse2::decodeIntel(std::string_view text, std::uint8_t* out, DigitCase digits) {
    return decodeIntelBy<Sse2Lanes>(text, out, digits);
}

DataRun Sse2::decodeS(std::string_view text, std::uint8_t* out, DigitCase digits) {
    return decodeSBy<Sse2Lanes>(text, out, digits);
}

char* Sse2::encodeIntel(char* out, std::uint16_t address, std::uint8_t typeByte,
                        std::span<const std::uint8_t> data) {
    return encodeIntelBy<Sse2Lanes<DigitCase::Upper>>(out, address, typeByte, data);
}

char* Sse2::encodeS(char* out, char typeDigit, std::uint32_t address, std::size_t addressSize,
                    std::span<const std::uint8_t> data) {
    return encodeSBy<Sse2Lanes<DigitCase::Upper>>(out, typeDigit, address, addressSize, data);
}

}  // namespace Util::Records

#endif
