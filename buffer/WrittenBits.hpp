#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

/// Flags in words of 64, the first one in the lowest bit of the first word.
namespace Buffer::WrittenBits {

using Word = std::uint64_t;
inline constexpr std::size_t perWord = 64;

/// The words for `count` flags.
constexpr std::size_t wordCount(std::size_t count) {
    return count / perWord + (count % perWord != 0 ? 1 : 0);
}

/// `count` set flags, at most 64.
constexpr Word all(std::size_t count) {
    return count == perWord ? ~Word{0} : (Word{1} << count) - 1;
}

/// The `count` flags, at most 64, from `at` on.
constexpr Word read(const Word* words, std::size_t at, std::size_t count) {
    const std::size_t shift = at % perWord;
    Word flags = words[at / perWord] >> shift;
    if (shift + count > perWord) flags |= words[at / perWord + 1] << (perWord - shift);
    return flags & all(count);
}

/// The flags from `at` to the end of their word, or `rest` of them if those are fewer.
constexpr std::size_t inWord(std::size_t at, std::size_t rest) {
    const std::size_t room = perWord - at % perWord;
    return room < rest ? room : rest;
}

/// Replaces `count` flags from `at` on, all in one word.
constexpr void write(Word* words, std::size_t at, std::size_t count, Word flags) {
    const std::size_t shift = at % perWord;
    const Word others = words[at / perWord] & ~(all(count) << shift);
    words[at / perWord] = others | flags << shift;
}

/// Calls `take` with the place of every set flag.
template <class Take>
void forEach(Word flags, Take take) {
    for (; flags != 0; flags &= flags - 1) take(static_cast<std::size_t>(std::countr_zero(flags)));
}

}  // namespace Buffer::WrittenBits
