#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "buffer/MemoryBuffer.hpp"

namespace Io::Export {

/// A stretch of an image that stays with its owner.
struct ImageView {
    std::uint64_t startAddress;
    std::span<const Buffer::MemoryElement> elements;

    explicit ImageView(const Buffer::MemoryBuffer& buffer)
        : ImageView(buffer.getStartAddress(), buffer.viewElements()) {}
    ImageView(std::uint64_t start, std::span<const Buffer::MemoryElement> stretch)
        : startAddress(start), elements(stretch) {}
};

/// Hands `take` the effective bytes of `elements` in order, in pieces of `pieceSize` bytes, at most
/// 65,536, of which the last one may be shorter. An image is never there as a second copy.
template <class Take>
void forEffectiveBytes(std::span<const Buffer::MemoryElement> elements, std::size_t pieceSize,
                       Take take) {
    // Many pieces are made at once, since the bytes of a short one cost as much as those of many.
    // On the stack: memory that runs out now would leave half a file.
    constexpr std::size_t stretchSize = std::size_t{1} << 16U;
    const std::size_t stretch = pieceSize * (stretchSize / pieceSize);
    std::array<std::uint8_t, stretchSize> bytes;
    while (!elements.empty()) {
        std::span<const std::uint8_t> made(bytes.data(), std::min(stretch, elements.size()));
        Buffer::effectiveBytes(elements.first(made.size()), bytes.data());
        elements = elements.subspan(made.size());
        while (!made.empty()) {
            const std::size_t count = std::min(pieceSize, made.size());
            take(made.first(count));
            made = made.subspan(count);
        }
    }
}

}  // namespace Io::Export
