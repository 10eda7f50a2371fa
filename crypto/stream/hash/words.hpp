#pragma once

#include <bit>
#include <climits>
#include <concepts>
#include <cstddef>
#include <cstring>

/// Words of the hash algorithms as bytes in memory, in either order.
namespace kv::crypto::stream::hash {

template <std::unsigned_integral Word>
constexpr Word swapped_bytes(Word word) {
    Word swapped = 0;
    for (std::size_t i = 0; i < sizeof(Word); ++i) {
        swapped = static_cast<Word>(swapped << CHAR_BIT) | (word & UCHAR_MAX);
        word = static_cast<Word>(word >> CHAR_BIT);
    }
    return swapped;
}

template <std::unsigned_integral Word>
Word load_native(const unsigned char* bytes) {
    Word word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

template <std::unsigned_integral Word>
Word load_little(const unsigned char* bytes) {
    const Word word = load_native<Word>(bytes);
    return std::endian::native == std::endian::little ? word : swapped_bytes(word);
}

template <std::unsigned_integral Word>
Word load_big(const unsigned char* bytes) {
    const Word word = load_native<Word>(bytes);
    return std::endian::native == std::endian::big ? word : swapped_bytes(word);
}

template <std::unsigned_integral Word>
void store_little(unsigned char* bytes, Word word) {
    for (std::size_t i = 0; i < sizeof word; ++i)
        bytes[i] = static_cast<unsigned char>(word >> (CHAR_BIT * i));
}

template <std::unsigned_integral Word>
void store_big(unsigned char* bytes, Word word) {
    store_little(bytes, swapped_bytes(word));
}

}  // namespace kv::crypto::stream::hash
