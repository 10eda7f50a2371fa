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

/// The first element from `from` on whose flag is not that of `passed`, a word of equal flags.
std::size_t ElementView::find(std::size_t from, WrittenBits::Word passed) const {
    while (from < size_) {
        const std::size_t count = std::min(WrittenBits::perWord, size_ - from);
        const WrittenBits::Word sought = (written(from, count) ^ passed) & WrittenBits::all(count);
        if (sought != 0) return from + static_cast<std::size_t>(std::countr_zero(sought));
        from += count;
    }
    return size_;
}

MemoryElement ElementView::operator[](std::size_t at) const {
    return {values()[at], fillers_ == nullptr ? std::uint8_t{0} : fillers()[at],
            static_cast<std::uint8_t>(written(at, 1))};
}

std::optional<std::span<const std::uint8_t>> ElementView::bytes() const {
    if (fillers_ != nullptr) return std::nullopt;
    return std::span(values(), size_);
}

void ElementView::copyBytes(std::uint8_t* out) const {
    if (fillers_ == nullptr) {
        std::copy_n(values(), size_, out);
        return;
    }
    for (std::size_t i = 0; i < size_;) {
        const std::size_t count = WrittenBits::inWord(begin_ + i, size_ - i);
        const WrittenBits::Word flags = written(i, count);
        if (flags == WrittenBits::all(count)) {
            std::copy_n(values() + i, count, out + i);
        } else {
            std::copy_n(fillers() + i, count, out + i);
            WrittenBits::forEach(flags, [&](std::size_t k) { out[i + k] = values()[i + k]; });
        }
        i += count;
    }
}

}  // namespace Buffer
