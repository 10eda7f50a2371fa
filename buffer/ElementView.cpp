#include "buffer/ElementView.hpp"

#include <algorithm>
#include <bit>

namespace Buffer {

ElementView ElementView::part(std::size_t at, std::size_t count) const {
    ElementView view = *this;
    view.begin_ += at;
    view.size_ = count;
    return view;
}

/// The flags, of which those of blocks without memory are not set, by places in the image.
WrittenBits::Word ElementView::writtenInBlocks(std::size_t at, std::size_t count) const {
    const auto flagsOf = [this](std::size_t first, std::size_t number) {
        return blocks_->values.has(first) ? WrittenBits::read(written_, first, number) : 0;
    };
    const std::size_t head = Blocks::inBlock(at, count);
    WrittenBits::Word flags = flagsOf(at, head);
    if (head != count) flags |= flagsOf(at + head, count - head) << head;
    return flags;
}

std::size_t ElementView::skipUntouched(std::size_t at) const {
    const std::size_t next = skipUnwritten(at);
    if (blocks_ == nullptr || fillers_ == nullptr) return next;
    return std::min(next, blocks_->fillers.next(begin_ + at, begin_ + size_) - begin_);
}

/// The first element from `from` on whose flag is not that of `passed`, a word of equal flags.
std::size_t ElementView::find(std::size_t from, WrittenBits::Word passed) const {
    while (from < size_) {
        if (passed == 0) from = skipUnwritten(from);
        if (from == size_) break;
        const std::size_t count = std::min(WrittenBits::perWord, size_ - from);
        const WrittenBits::Word sought = (written(from, count) ^ passed) & WrittenBits::all(count);
        if (sought != 0) return from + static_cast<std::size_t>(std::countr_zero(sought));
        from += count;
        if (from == size_) break;
        // On with whole words, from the beginning of the one that this element is in.
        from -= (begin_ + from) % WrittenBits::perWord;
        if (valuesAt(from) == nullptr) continue;
        const std::size_t end = from + inBlock(from, size_ - from);
        const WrittenBits::Word* word = written_ + (begin_ + from) / WrittenBits::perWord;
        for (; end - from >= WrittenBits::perWord && *word == passed; ++word)
            from += WrittenBits::perWord;
    }
    return size_;
}

std::size_t ElementView::findLastWritten() const {
    // Of a stretch without a written element, little or nothing is looked at.
    constexpr std::size_t stretch = std::size_t{1} << 20U;
    for (std::size_t end = size_; end > 0;) {
        const std::size_t begin = end - std::min(end, stretch);
        const ElementView elements = part(begin, end - begin);
        const std::size_t first = elements.findWritten(0);
        if (first == elements.size()) {
            end = begin;
            continue;
        }
        for (;;) {
            const std::size_t count = std::min(WrittenBits::perWord, end - begin);
            const WrittenBits::Word flags = written(end - count, count) & WrittenBits::all(count);
            if (flags != 0)
                return end - count + static_cast<std::size_t>(std::bit_width(flags)) - 1;
            end -= count;
        }
    }
    return size_;
}

MemoryElement ElementView::operator[](std::size_t at) const {
    const std::uint8_t* const value = valuesAt(at);
    const std::uint8_t* const filler = fillersAt(at);
    return {value == nullptr ? std::uint8_t{0} : *value,
            filler == nullptr ? std::uint8_t{0} : *filler,
            static_cast<std::uint8_t>(written(at, 1))};
}

std::optional<std::span<const std::uint8_t>> ElementView::bytes() const {
    if (fillers_ != nullptr) return std::nullopt;
    for (std::size_t at = 0; blocks_ != nullptr && at < size_; at += inBlock(at, size_ - at))
        if (valuesAt(at) == nullptr) return std::nullopt;
    return std::span(values(), size_);
}

void ElementView::copyBytes(std::uint8_t* out) const {
    for (std::size_t at = 0; at < size_;) {
        const std::size_t count = inBlock(at, size_ - at);
        copyStretch(at, count, out + at);
        at += count;
    }
}

/// Copies the effective bytes of elements that have memory, or have none.
void ElementView::copyStretch(std::size_t at, std::size_t count, std::uint8_t* out) const {
    const std::uint8_t* const value = valuesAt(at);
    const std::uint8_t* const filler = fillersAt(at);
    if (value == nullptr && filler == nullptr) {
        std::fill_n(out, count, std::uint8_t{0});
        return;
    }
    if (value == nullptr || filler == nullptr) {
        std::copy_n(value == nullptr ? filler : value, count, out);
        return;
    }
    for (std::size_t i = 0; i < count;) {
        const std::size_t some = WrittenBits::inWord(begin_ + at + i, count - i);
        const WrittenBits::Word flags = written(at + i, some);
        if (flags == WrittenBits::all(some)) {
            std::copy_n(value + i, some, out + i);
        } else {
            std::copy_n(filler + i, some, out + i);
            WrittenBits::forEach(flags, [&](std::size_t k) { out[i + k] = value[i + k]; });
        }
        i += some;
    }
}

}  // namespace Buffer
