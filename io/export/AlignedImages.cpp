#include "io/export/AlignedImages.hpp"

#include <algorithm>
#include <utility>

namespace Io::Export {

namespace {

/// Copies the written bytes of `image` that lie in the addresses of `piece`.
void copyWritten(const ImageView& image, std::span<std::uint8_t> piece) {
    forStretches(
        {image.startAddress, image.elements, Unwritten::Skipped}, [&](const ImageView& stretch) {
            stretch.elements.copyBytes(piece.data() + (stretch.startAddress - image.startAddress));
        });
}

}  // namespace

void AlignedImages::addRange(const ImageView& stretch) {
    if (stretch.elements.empty()) return;
    const std::uint64_t mask = unit_ - 1;
    const Range range{stretch.startAddress & ~mask,
                      ((stretch.startAddress + stretch.elements.size() - 1) | mask) + 1};
    // Most stretches continue the last range.
    if (!ranges_.empty() && range.start <= ranges_.back().end &&
        range.start >= ranges_.back().start)
        ranges_.back().end = std::max(ranges_.back().end, range.end);
    else
        ranges_.push_back(range);
}

void AlignedImages::finish() {
    for (const ImageView& image : images_)
        forStretches(image, [this](const ImageView& stretch) { addRange(stretch); });
    std::ranges::sort(ranges_, {}, &Range::start);
    std::vector<Range> merged;
    for (const Range& range : ranges_) {
        if (!merged.empty() && range.start <= merged.back().end)
            merged.back().end = std::max(merged.back().end, range.end);
        else
            merged.push_back(range);
    }
    ranges_ = std::move(merged);
}

std::uint64_t AlignedImages::size() const {
    std::uint64_t size = 0;
    for (const Range& range : ranges_) size += range.end - range.start;
    return size;
}

/// Lays the first and the last filler of `image` over the rest of their units.
void AlignedImages::pad(const ImageView& image, std::span<std::uint8_t> piece,
                        std::uint64_t start) const {
    const Buffer::ElementView& elements = image.elements;
    if (elements.empty() || elements.fillers() == nullptr) return;
    const auto lay = [&](std::uint64_t from, std::uint64_t to, std::uint8_t filler) {
        const std::uint64_t first = std::max(from, start);
        const std::uint64_t end = std::min(to, start + piece.size());
        if (first < end)
            std::ranges::fill(piece.subspan(static_cast<std::size_t>(first - start),
                                            static_cast<std::size_t>(end - first)),
                              filler);
    };
    const std::uint64_t mask = unit_ - 1;
    const std::uint64_t end = image.startAddress + elements.size();
    lay(image.startAddress & ~mask, image.startAddress, elements[0].filler);
    lay(end, (end + mask) & ~mask, elements[elements.size() - 1].filler);
}

void AlignedImages::fill(std::span<std::uint8_t> piece, std::uint64_t start) const {
    std::ranges::fill(piece, std::uint8_t{0});
    if (padding_ == Padding::Fillers)
        for (const ImageView& image : images_) pad(image, piece, start);
    const auto forParts = [&](auto copy) {
        for (const ImageView& image : images_) {
            const std::uint64_t end = image.startAddress + image.elements.size();
            const std::uint64_t first = std::max(start, image.startAddress);
            const std::uint64_t last = std::min(start + piece.size(), end);
            if (first < last)
                copy(image.part(static_cast<std::size_t>(first - image.startAddress),
                                static_cast<std::size_t>(last - first)),
                     piece.subspan(static_cast<std::size_t>(first - start)));
        }
    };
    bool isSkipping = false;
    forParts([&](const ImageView& part, std::span<std::uint8_t> out) {
        part.elements.copyBytes(out.data());
        isSkipping = isSkipping || part.unwritten == Unwritten::Skipped;
    });
    // Once more, since a filler may have covered what an earlier image has written.
    if (isSkipping) forParts(copyWritten);
}

}  // namespace Io::Export
