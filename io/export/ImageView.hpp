#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "buffer/MemoryBuffer.hpp"

namespace Io::Export {

/// One past the last address that 32 bits express.
inline constexpr std::uint64_t addressSpace32 = std::uint64_t{1} << 32U;

/// What a file gets of the addresses that nothing has written.
enum class Unwritten : std::uint8_t {
    Filled,  ///< their fillers
    Skipped  ///< nothing: they are gaps in the file
};

/// A stretch of an image that stays with its owner.
struct ImageView {
    std::uint64_t startAddress;
    Buffer::ElementView elements;
    Unwritten unwritten = Unwritten::Filled;
    std::size_t group = 0;  ///< of the images of a file that has several groups of them

    explicit ImageView(const Buffer::MemoryBuffer& buffer)
        : ImageView(buffer.getStartAddress(), buffer.viewElements()) {}
    ImageView(std::uint64_t start, Buffer::ElementView stretch,
              Unwritten treatment = Unwritten::Filled)
        : startAddress(start), elements(stretch), unwritten(treatment) {}

    /// The part of `count` elements from element `at` on.
    ImageView part(std::size_t at, std::size_t count) const {
        ImageView view(startAddress + at, elements.part(at, count), unwritten);
        view.group = group;
        return view;
    }
};

/// Hands `take` the stretches of `image` that belong into a file, ascending: the runs of written
/// elements if unwritten ones are skipped, or else the image itself, even one without elements.
template <class Take>
void forStretches(const ImageView& image, Take take) {
    if (image.unwritten == Unwritten::Filled) return take(image);
    for (std::size_t at = image.elements.findWritten(0); at < image.elements.size();) {
        const std::size_t end = image.elements.findUnwritten(at);
        take(image.part(at, end - at));
        at = image.elements.findWritten(end);
    }
}

/// The bytes of a record of at most `bytes` that has a whole number of words of `unit` bytes, one
/// at least.
constexpr std::uint32_t wholeWords(std::uint32_t bytes, std::uint32_t unit) {
    return std::max(bytes - bytes % unit, unit);
}

/// Whether anything of `image` belongs into a file.
inline bool hasStretches(const ImageView& image) {
    return image.unwritten == Unwritten::Filled ||
           image.elements.findWritten(0) < image.elements.size();
}

/// Hands `take` the bytes in order, in pieces of `pieceSize` of which the last one may be shorter.
template <class Take>
void forPieces(std::span<const std::uint8_t> bytes, std::size_t pieceSize, Take& take) {
    while (!bytes.empty()) {
        const std::size_t count = std::min(pieceSize, bytes.size());
        take(bytes.first(count));
        bytes = bytes.subspan(count);
    }
}

/// Hands `take` the effective bytes of `elements` in order, in pieces of `pieceSize` bytes, at most
/// 65,536, of which the last one may be shorter. An image is never there as a second copy.
template <class Take>
void forEffectiveBytes(const Buffer::ElementView& elements, std::size_t pieceSize, Take take) {
    if (const auto bytes = elements.bytes()) return forPieces(*bytes, pieceSize, take);
    // Many pieces are made at once, since the bytes of a short one cost as much as those of many.
    // On the stack: memory that runs out now would leave half a file.
    constexpr std::size_t stretchSize = std::size_t{1} << 16U;
    const std::size_t stretch = pieceSize * (stretchSize / pieceSize);
    std::array<std::uint8_t, stretchSize> made;
    for (std::size_t at = 0; at < elements.size(); at += stretch) {
        const Buffer::ElementView part = elements.part(at, std::min(stretch, elements.size() - at));
        part.copyBytes(made.data());
        forPieces(std::span(made).first(part.size()), pieceSize, take);
    }
}

}  // namespace Io::Export
