#include "buffer/ElementStore.hpp"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "buffer/ImageSpace.hpp"

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

/// Calls `work` with stretches of `elements`, which go to `at`, by their places in both and their
/// lengths. In each of them the source has memory or has none, and so has the target.
template <class Work>
void forStretches(std::size_t at, const ElementView& elements, bool isSparse, Work work) {
    for (std::size_t i = 0; i < elements.size();) {
        std::size_t count = elements.inBlock(i, elements.size() - i);
        if (isSparse) count = Blocks::inBlock(at + i, count);
        work(at + i, i, count);
        i += count;
    }
}

/// Calls `take` with the ranges of blocks that have elements of [`at`, `at + count`) and no memory,
/// by their first elements and lengths, and notes that they have it.
template <class Take>
void takeBlocks(Blocks& blocks, std::size_t at, std::size_t count, Take take) {
    for (const std::size_t end = at + count; at < end;) {
        const std::size_t first = at - at % Blocks::size;
        std::size_t next = first;
        for (; next < end && !blocks.has(next); next += Blocks::size) continue;
        if (next != first) take(first, next - first);
        for (std::size_t block = first; block < next; block += Blocks::size) blocks.add(block);
        at = std::max(next, first + Blocks::size);
    }
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
    : ElementStore(count, count >= imageSpace().shortestSparse) {}

ElementStore::ElementStore(std::uint64_t count, bool isSparse) : size_(checked(count)) {
    if (isSparse) {
        const std::size_t reserved = Blocks::count(size_) * Blocks::size;
        values_ = Platform::PageBlock::reserve(reserved);
        written_ = Platform::PageBlock::reserve(bytesOfFlags(reserved));
        blocks_ = std::make_unique<SparseBlocks>(size_);
    } else {
        values_ = Platform::PageBlock(size_);
        fillers_ = Platform::PageBlock(size_);
        written_ = Platform::PageBlock(bytesOfFlags(size_));
    }
}

ElementStore::ElementStore(Platform::PageBlock values, std::size_t count)
    : values_(std::move(values)), fillers_(count), written_(bytesOfFlags(count)), size_(count) {
    setWritten(0, count);
}

ElementStore::ElementStore(const ElementStore& other)
    : ElementStore(other.size_, other.blocks_ != nullptr) {
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
      blocks_(std::move(other.blocks_)),
      hasFillers_(std::exchange(other.hasFillers_, false)) {}

ElementStore& ElementStore::operator=(ElementStore&& other) noexcept {
    std::swap(values_, other.values_);
    std::swap(fillers_, other.fillers_);
    std::swap(written_, other.written_);
    std::swap(size_, other.size_);
    std::swap(blocks_, other.blocks_);
    std::swap(hasFillers_, other.hasFillers_);
    return *this;
}

void ElementStore::takeValues(std::size_t at, std::size_t count) {
    if (blocks_ == nullptr) return;
    takeBlocks(blocks_->values, at, count, [this](std::size_t first, std::size_t length) {
        values_.take(first, length);
        written_.take(bytesOfFlags(first), bytesOfFlags(length));
    });
}

void ElementStore::takeFillers(std::size_t at, std::size_t count) {
    if (blocks_ == nullptr) return;
    if (fillers_.size() == 0) fillers_ = Platform::PageBlock::reserve(values_.size());
    takeBlocks(blocks_->fillers, at, count,
               [this](std::size_t first, std::size_t length) { fillers_.take(first, length); });
}

/// Takes the memory that `elements` need here.
void ElementStore::takeFor(std::size_t at, ElementView elements) {
    if (blocks_ != nullptr)
        forStretches(at, elements, true,
                     [&](std::size_t place, std::size_t from, std::size_t count) {
                         if (elements.part(from, count).findWritten(0) != count)
                             takeValues(place, count);
                         if (elements.fillersAt(from) != nullptr) takeFillers(place, count);
                     });
    hasFillers_ = hasFillers_ || elements.fillers() != nullptr;
}

void ElementStore::write(std::size_t at, std::span<const std::uint8_t> bytes) {
    if (blocks_ != nullptr) takeValues(at, bytes.size());
    std::ranges::copy(bytes, values() + at);
    setWritten(at, bytes.size());
}

void ElementStore::writePattern(std::size_t at, std::span<const std::uint8_t> bytes,
                                std::size_t count) {
    takeValues(at, count);
    repeat(values() + at, bytes, count);
    setFlags(at, count);
}

void ElementStore::fillPattern(std::size_t at, std::span<const std::uint8_t> bytes,
                               std::size_t count) {
    if (std::ranges::all_of(bytes, [](std::uint8_t b) { return b == 0; })) {
        if (hasFillers_) clearFillers(at, count);
        return;
    }
    takeFillers(at, count);
    hasFillers_ = true;
    repeat(fillers() + at, bytes, count);
}

/// Marks the elements as written and resets their fillers to 0.
void ElementStore::setWritten(std::size_t at, std::size_t count) {
    if (hasFillers_) clearFillers(at, count);
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

/// Resets fillers to 0.
void ElementStore::clearFillers(std::size_t at, std::size_t count) {
    for (const std::size_t end = at + count; at < end;) {
        const std::size_t length = blocks_ == nullptr ? count : Blocks::inBlock(at, end - at);
        if (hasFillers(at)) setFillers(at, nullptr, length);
        at += length;
    }
}

void ElementStore::setFillers(std::size_t at, const std::uint8_t* source, std::size_t count) {
    if (source != nullptr)
        std::copy_n(source, count, fillers() + at);
    else
        std::fill_n(fillers() + at, count, std::uint8_t{0});
}

void ElementStore::replace(std::size_t at, ElementView elements) {
    takeFor(at, elements);
    forStretches(at, elements, blocks_ != nullptr,
                 [&](std::size_t place, std::size_t from, std::size_t length) {
                     if (hasFillers(place)) setFillers(place, elements.fillersAt(from), length);
                     if (hasValues(place))
                         replaceValues(place, elements.part(from, length), elements.valuesAt(from));
                 });
}

/// @param values  of the elements; null for zeros, none of which is written
void ElementStore::replaceValues(std::size_t at, ElementView elements, const std::uint8_t* values) {
    for (std::size_t i = 0; i < elements.size();) {
        const std::size_t count = WrittenBits::inWord(at + i, elements.size() - i);
        const Word flags = elements.written(i, count);
        const Word before = WrittenBits::read(written(), at + i, count);
        // Where both are unwritten, both values are 0 and the page need not be touched.
        if ((flags | before) != 0) {
            if (values != nullptr)
                std::copy_n(values + i, count, this->values() + at + i);
            else
                std::fill_n(this->values() + at + i, count, std::uint8_t{0});
            WrittenBits::write(written(), at + i, count, flags);
        }
        i += count;
    }
}

void ElementStore::apply(std::size_t at, ElementView elements) {
    takeFor(at, elements);
    forStretches(at, elements, blocks_ != nullptr,
                 [&](std::size_t place, std::size_t from, std::size_t length) {
                     const std::uint8_t* const newValues = elements.valuesAt(from);
                     const std::uint8_t* const newFillers = elements.fillersAt(from);
                     const bool setsFillers = hasFillers(place);
                     if (newValues == nullptr && !setsFillers) return;
                     for (std::size_t i = 0; i < length;) {
                         const std::size_t count = WrittenBits::inWord(place + i, length - i);
                         const Word flags = elements.written(from + i, count);
                         if (flags != 0) applyValues(place + i, newValues + i, flags, count);
                         if (setsFillers)
                             applyFillers(place + i,
                                          newFillers == nullptr ? nullptr : newFillers + i,
                                          ~flags & WrittenBits::all(count), count);
                         i += count;
                     }
                 });
}

void ElementStore::apply(std::size_t at, const MemoryElement& element) {
    if (element.hasValue != 0)
        writePattern(at, {&element.value, 1}, 1);
    else
        fillPattern(at, {&element.filler, 1}, 1);
}

void ElementStore::merge(std::size_t at, ElementView elements, bool keepsWritten) {
    takeFor(at, elements);
    forStretches(at, elements, blocks_ != nullptr,
                 [&](std::size_t place, std::size_t from, std::size_t length) {
                     const std::uint8_t* const newValues = elements.valuesAt(from);
                     const std::uint8_t* const newFillers = elements.fillersAt(from);
                     if (newValues == nullptr && newFillers == nullptr) return;
                     for (std::size_t i = 0; i < length;) {
                         const std::size_t count = WrittenBits::inWord(place + i, length - i);
                         const Word before = flagsAt(place + i, count);
                         const Word theirs = elements.written(from + i, count);
                         const Word taken = keepsWritten ? theirs & ~before : theirs;
                         if (taken != 0) applyValues(place + i, newValues + i, taken, count);
                         if (hasFillers(place)) applyFillers(place + i, nullptr, taken, count);
                         if (newFillers != nullptr)
                             mergeFillers(place + i, newFillers + i,
                                          ~(before | theirs) & WrittenBits::all(count));
                         i += count;
                     }
                 });
}

/// Replaces fillers that are 0 where `flags` say so.
void ElementStore::mergeFillers(std::size_t at, const std::uint8_t* source, Word flags) {
    WrittenBits::forEach(flags, [&](std::size_t k) {
        if (fillers()[at + k] == 0) fillers()[at + k] = source[k];
    });
}

void ElementStore::applyValues(std::size_t at, const std::uint8_t* source, Word flags,
                               std::size_t count) {
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
