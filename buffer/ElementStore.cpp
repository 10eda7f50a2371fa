#include "buffer/ElementStore.hpp"

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <utility>

#include "util/VectorClones.hpp"

namespace Buffer {

static_assert(sizeof(MemoryElement) == 3, "an image costs three bytes an address");

namespace {

std::size_t bytesFor(std::uint64_t count) {
    if (count > PTRDIFF_MAX / sizeof(MemoryElement))
        throw std::length_error("an image longer than the address space");
    return static_cast<std::size_t>(count) * sizeof(MemoryElement);
}

}  // namespace

UTIL_VECTOR_CLONES
void effectiveBytes(std::span<const MemoryElement> elements, std::uint8_t* out) {
    const MemoryElement* const in = elements.data();
    const std::size_t count = elements.size();
    for (std::size_t i = 0; i < count; ++i) out[i] = in[i].effectiveByte();
}

UTIL_VECTOR_CLONES
void writtenElements(std::span<const std::uint8_t> bytes, std::span<MemoryElement> elements) {
    MemoryElement* const out = elements.data();
    const std::size_t count = bytes.size();
    for (std::size_t i = 0; i < count; ++i) out[i] = {bytes[i], 0, 1};
}

ElementStore::ElementStore(std::uint64_t count)
    : pages_(bytesFor(count)), size_(static_cast<std::size_t>(count)) {}

ElementStore::ElementStore(const ElementStore& other) : ElementStore(other.size_) {
    std::ranges::copy(other.view(), first());
}

ElementStore& ElementStore::operator=(const ElementStore& other) {
    *this = ElementStore(other);
    return *this;
}

ElementStore::ElementStore(ElementStore&& other) noexcept
    : pages_(std::move(other.pages_)), size_(std::exchange(other.size_, 0)) {}

ElementStore& ElementStore::operator=(ElementStore&& other) noexcept {
    std::swap(pages_, other.pages_);
    std::swap(size_, other.size_);
    return *this;
}

}  // namespace Buffer
