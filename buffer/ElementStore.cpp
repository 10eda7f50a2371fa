#include "buffer/ElementStore.hpp"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace Buffer {

using WrittenBits::Word;

namespace {

/// The size of one array of bytes.
std::size_t paddedSize(std::size_t count) {
    return WrittenBits::wordsFor(count) * WrittenBits::perWord;
}

std::size_t bytesFor(std::uint64_t count) {
    // No more than an array of elements could hold.
    if (count > PTRDIFF_MAX / sizeof(MemoryElement))
        throw std::length_error("an image longer than the address space");
    const auto size = static_cast<std::size_t>(count);
    return 2 * paddedSize(size) + WrittenBits::wordsFor(size) * sizeof(Word);
}

}  // namespace

ElementStore::ElementStore(std::uint64_t count)
    : pages_(bytesFor(count)), size_(static_cast<std::size_t>(count)) {}

ElementStore::ElementStore(const ElementStore& other) : ElementStore(other.size_) {
    replace(0, other.view());
}

ElementStore& ElementStore::operator=(const ElementStore& other) {
    *this = ElementStore(other);
    return *this;
}

ElementStore::ElementStore(ElementStore&& other) noexcept
    : pages_(std::move(other.pages_)),
      size_(std::exchange(other.size_, 0)),
      hasFillers_(std::exchange(other.hasFillers_, false)) {}

ElementStore& ElementStore::operator=(ElementStore&& other) noexcept {
    std::swap(pages_, other.pages_);
    std::swap(size_, other.size_);
    std::swap(hasFillers_, other.hasFillers_);
    return *this;
}

std::uint8_t* ElementStore::fillers() const {
    return values() + paddedSize(size_);
}

Word* ElementStore::written() const {
    return reinterpret_cast<Word*>(pages_.data() + 2 * paddedSize(size_));
}

void ElementStore::write(std::size_t at, std::span<const std::uint8_t> bytes) {
    std::ranges::copy(bytes, values() + at);
    if (hasFillers_) setFillers(at, nullptr, bytes.size());
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t count = WrittenBits::inWord(at + i, bytes.size() - i);
        WrittenBits::write(written(), at + i, count, WrittenBits::all(count));
        i += count;
    }
}

void ElementStore::setFillers(std::size_t at, const std::uint8_t* source, std::size_t count) {
    if (source != nullptr)
        std::copy_n(source, count, fillers() + at);
    else
        std::fill_n(fillers() + at, count, std::uint8_t{0});
}

void ElementStore::replace(std::size_t at, ElementView elements) {
    const std::uint8_t* const newFillers = elements.fillers();
    hasFillers_ = hasFillers_ || newFillers != nullptr;
    if (hasFillers_) setFillers(at, newFillers, elements.size());
    for (std::size_t i = 0; i < elements.size();) {
        const std::size_t count = WrittenBits::inWord(at + i, elements.size() - i);
        const Word flags = elements.written(i, count);
        const Word before = WrittenBits::read(written(), at + i, count);
        // Unwritten here and there: both values are 0, and the page need not be touched.
        if ((flags | before) != 0) {
            std::copy_n(elements.values() + i, count, values() + at + i);
            WrittenBits::write(written(), at + i, count, flags);
        }
        i += count;
    }
}

void ElementStore::apply(std::size_t at, ElementView elements) {
    const std::uint8_t* const newFillers = elements.fillers();
    hasFillers_ = hasFillers_ || newFillers != nullptr;
    for (std::size_t i = 0; i < elements.size();) {
        const std::size_t count = WrittenBits::inWord(at + i, elements.size() - i);
        const Word flags = elements.written(i, count);
        applyValues(at + i, elements.values() + i, flags, count);
        if (hasFillers_)
            applyFillers(at + i, newFillers == nullptr ? nullptr : newFillers + i,
                         ~flags & WrittenBits::all(count), count);
        i += count;
    }
}

void ElementStore::applyValues(std::size_t at, const std::uint8_t* source, Word flags,
                               std::size_t count) {
    if (flags == 0) return;
    std::uint8_t* const out = values() + at;
    if (flags == WrittenBits::all(count))
        std::copy_n(source, count, out);
    else
        WrittenBits::forEach(flags, [&](std::size_t k) { out[k] = source[k]; });
    WrittenBits::write(written(), at, count, flags | WrittenBits::read(written(), at, count));
}

void ElementStore::applyFillers(std::size_t at, const std::uint8_t* source, Word flags,
                                std::size_t count) {
    std::uint8_t* const out = fillers() + at;
    if (flags == WrittenBits::all(count))
        setFillers(at, source, count);
    else
        WrittenBits::forEach(flags, [&](std::size_t k) {
            out[k] = source == nullptr ? std::uint8_t{0} : source[k];
        });
}

}  // namespace Buffer
