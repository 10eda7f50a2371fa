#include "buffer/ElementStore.hpp"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace Buffer {

using WrittenBits::Word;

namespace {

/// `count` as the size of an array, which `getElements` must be able to return.
std::size_t checked(std::uint64_t count) {
    if (count > PTRDIFF_MAX / sizeof(MemoryElement))
        throw std::length_error("an image longer than the address space");
    return static_cast<std::size_t>(count);
}

std::size_t bytesOfFlags(std::size_t count) {
    return WrittenBits::wordCount(count) * sizeof(Word);
}

/// Writes `pattern` again and again over the `count` bytes from `out` on.
void repeat(std::uint8_t* out, std::span<const std::uint8_t> pattern, std::size_t count) {
    // What is copied on stays in the cache.
    constexpr std::size_t longestStretch = std::size_t{1} << 14U;
    std::size_t done = std::min(pattern.size(), count);
    std::copy_n(pattern.data(), done, out);
    std::size_t stretch = done;
    while (done < count) {
        const std::size_t length = std::min(stretch, count - done);
        std::copy_n(out, length, out + done);
        done += length;
        if (stretch < longestStretch) stretch = done;
    }
}

}  // namespace

ElementStore::ElementStore(std::uint64_t count)
    : values_(checked(count)),
      fillers_(values_.size()),
      written_(bytesOfFlags(values_.size())),
      size_(values_.size()) {}

ElementStore::ElementStore(Platform::PageBlock values, std::size_t count)
    : values_(std::move(values)), fillers_(count), written_(bytesOfFlags(count)), size_(count) {
    setWritten(0, count);
}

ElementStore::ElementStore(const ElementStore& other) : ElementStore(other.size_) {
    replace(0, other.view());
}

ElementStore& ElementStore::operator=(const ElementStore& other) {
    *this = ElementStore(other);
    return *this;
}

ElementStore::ElementStore(ElementStore&& other) noexcept
    : values_(std::move(other.values_)),
      fillers_(std::move(other.fillers_)),
      written_(std::move(other.written_)),
      size_(std::exchange(other.size_, 0)),
      hasFillers_(std::exchange(other.hasFillers_, false)) {}

ElementStore& ElementStore::operator=(ElementStore&& other) noexcept {
    std::swap(values_, other.values_);
    std::swap(fillers_, other.fillers_);
    std::swap(written_, other.written_);
    std::swap(size_, other.size_);
    std::swap(hasFillers_, other.hasFillers_);
    return *this;
}

void ElementStore::write(std::size_t at, std::span<const std::uint8_t> bytes) {
    std::ranges::copy(bytes, values() + at);
    setWritten(at, bytes.size());
}

void ElementStore::writePattern(std::size_t at, std::span<const std::uint8_t> bytes,
                                std::size_t count) {
    repeat(values() + at, bytes, count);
    setFlags(at, count);
}

void ElementStore::fillPattern(std::size_t at, std::span<const std::uint8_t> bytes,
                               std::size_t count) {
    hasFillers_ = hasFillers_ || std::ranges::any_of(bytes, [](std::uint8_t b) { return b != 0; });
    if (hasFillers_) repeat(fillers() + at, bytes, count);
}

/// Marks the elements as written and resets their fillers to 0.
void ElementStore::setWritten(std::size_t at, std::size_t count) {
    if (hasFillers_) setFillers(at, nullptr, count);
    setFlags(at, count);
}

/// Marks the elements as written.
void ElementStore::setFlags(std::size_t at, std::size_t count) {
    for (const std::size_t end = at + count; at < end;) {
        const std::size_t inWord = WrittenBits::inWord(at, end - at);
        WrittenBits::write(written(), at, inWord, WrittenBits::all(inWord));
        at += inWord;
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
        // Where both are unwritten, both values are 0 and the page need not be touched.
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

void ElementStore::apply(std::size_t at, const MemoryElement& element) {
    if (element.hasValue != 0)
        writePattern(at, {&element.value, 1}, 1);
    else
        fillPattern(at, {&element.filler, 1}, 1);
}

void ElementStore::merge(std::size_t at, ElementView elements, bool keepsWritten) {
    const std::uint8_t* const newFillers = elements.fillers();
    hasFillers_ = hasFillers_ || newFillers != nullptr;
    for (std::size_t i = 0; i < elements.size();) {
        const std::size_t count = WrittenBits::inWord(at + i, elements.size() - i);
        const Word before = WrittenBits::read(written(), at + i, count);
        const Word theirs = elements.written(i, count);
        const Word taken = keepsWritten ? theirs & ~before : theirs;
        applyValues(at + i, elements.values() + i, taken, count);
        if (hasFillers_) applyFillers(at + i, nullptr, taken, count);
        if (newFillers != nullptr)
            WrittenBits::forEach(~(before | theirs) & WrittenBits::all(count), [&](std::size_t k) {
                if (fillers()[at + i + k] == 0) fillers()[at + i + k] = newFillers[i + k];
            });
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
