#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <vector>

#include "buffer/WrittenBits.hpp"

namespace Buffer {

/// Which blocks of the elements of a sparse image have memory. The elements of a block without it
/// are as in a new image.
class Blocks {
public:
    /// Elements of a block. Its flags, an eighth of that in bytes, are a whole number of pages.
    static constexpr std::size_t size = std::size_t{1} << 20U;

    static constexpr std::size_t count(std::size_t elements) {
        return elements / size + (elements % size != 0 ? 1 : 0);
    }

    /// Elements from `at` to the end of its block, or `rest` of them if those are fewer.
    static constexpr std::size_t inBlock(std::size_t at, std::size_t rest) {
        return std::min(size - at % size, rest);
    }

    explicit Blocks(std::size_t elements) : words_(WrittenBits::wordCount(count(elements))) {}

    /// The block of element `at` has memory.
    bool has(std::size_t at) const {
        const std::size_t block = at / size;
        return (words_[block / WrittenBits::perWord] >> block % WrittenBits::perWord & 1U) != 0;
    }

    void add(std::size_t at) {
        const std::size_t block = at / size;
        words_[block / WrittenBits::perWord] |= WrittenBits::Word{1}
                                                << block % WrittenBits::perWord;
    }

    /// The first element from `at` on whose block has memory, or `end`.
    std::size_t next(std::size_t at, std::size_t end) const {
        if (at >= end || has(at)) return std::min(at, end);
        const std::size_t block = at / size;
        WrittenBits::Word word = words_[block / WrittenBits::perWord] &
                                 ~WrittenBits::Word{0} << block % WrittenBits::perWord;
        for (std::size_t i = block / WrittenBits::perWord;;) {
            if (word != 0) {
                const auto bit = static_cast<std::size_t>(std::countr_zero(word));
                return std::min((i * WrittenBits::perWord + bit) * size, end);
            }
            if (++i == words_.size()) return end;
            word = words_[i];
        }
    }

private:
    std::vector<WrittenBits::Word> words_;
};

/// Blocks of the two kinds of memory of a sparse image.
struct SparseBlocks {
    explicit SparseBlocks(std::size_t elements) : values(elements), fillers(elements) {}
    Blocks values;  ///< with values and flags
    Blocks fillers;
};

}  // namespace Buffer
