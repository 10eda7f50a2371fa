#pragma once

#include <cstdint>
#include <deque>

#include "facts/Facts.hpp"
#include "io/export/ImageView.hpp"

namespace Io::Export {

/// Images one after the other, for the formats without addresses.
class ConcatenatedImages {
public:
    /// @param writer  the format, for reports
    explicit ConcatenatedImages(Facts::OutputFormat writer) : writer_(writer) {}

    /// Appends `image`. Refused with a report, as a whole, if there would be more than 0xFFFFFFFF
    /// bytes then.
    void append(const ImageView& image);

    /// The number of bytes of all images.
    std::uint64_t size() const { return size_; }

    /// Hands `take` the effective bytes of all images in order, in pieces of up to 64 KiB.
    template <class Take>
    void forBytes(Take take) const {
        constexpr std::size_t pieceSize = std::size_t{1} << 16U;
        for (const ImageView& image : images_) forEffectiveBytes(image.elements, pieceSize, take);
    }

private:
    Facts::OutputFormat writer_;
    std::deque<ImageView> images_;
    std::uint64_t size_ = 0;
};

}  // namespace Io::Export
