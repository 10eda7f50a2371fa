#pragma once

#include <cstdint>
#include <deque>
#include <string_view>

#include "io/export/ImageView.hpp"

namespace Io::Export {

/// Images one behind the other, for the formats without addresses.
class ConcatenatedImages {
public:
    /// Appends `buffer`. Refused with a report, as a whole, if there would be more than 0xFFFFFFFF
    /// bytes then.
    ///
    /// @param writerName  opens the report
    void append(const Buffer::MemoryBuffer& buffer, std::string_view writerName);

    /// The number of bytes of all images.
    std::uint64_t size() const { return size_; }

    /// Hands `take` the effective bytes of all images in order, piece by piece.
    template <class Take>
    void forBytes(Take take) const {
        constexpr std::size_t pieceSize = std::size_t{1} << 16U;
        for (const ImageView& image : images_) forEffectiveBytes(image.elements, pieceSize, take);
    }

private:
    std::deque<ImageView> images_;
    std::uint64_t size_ = 0;
};

}  // namespace Io::Export
