#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "io/export/ImageView.hpp"

namespace Io::Export {

/// Images as units of a fixed size at multiples of that size, for formats that have no smaller
/// ones.
///
/// A unit is there if an image has one of its addresses, or has written one of them if it skips
/// unwritten addresses. Of images that overlap, the later one counts, but a filler of an image that
/// skips unwritten addresses never covers a written byte. What no image has in a unit is 0, or the
/// filler of the first or the last address of the image beside it.
class AlignedImages {
public:
    /// What the addresses of a unit are that no image has.
    enum class Padding : std::uint8_t { Zeros, Fillers };

    /// @param unit  bytes, a power of two up to 65,536
    explicit AlignedImages(std::size_t unit, Padding padding = Padding::Zeros)
        : unit_(unit), padding_(padding) {}

    void insert(const ImageView& image) { images_.push_back(image); }

    /// Prepares `forRanges`. Called once, after the last image.
    void finish();

    /// All units, in bytes.
    std::uint64_t size() const;

    /// One past the last address of the last unit; 0 if there is none.
    std::uint64_t end() const { return ranges_.empty() ? 0 : ranges_.back().end; }

    /// Hands `take` the address and the bytes of ranges of units, ascending, in pieces of up to
    /// 65,536 bytes, whole units each. Needs no memory.
    template <class Take>
    void forRanges(Take take) const {
        for (const Range& range : ranges_)
            for (std::uint64_t at = range.start; at < range.end; at += pieceSize) {
                const std::uint64_t rest = range.end - at;
                const auto size = static_cast<std::size_t>(rest < pieceSize ? rest : pieceSize);
                const std::span<std::uint8_t> piece = std::span(piece_).first(size);
                fill(piece, at);
                take(at, std::span<const std::uint8_t>(piece));
            }
    }

private:
    struct Range {
        std::uint64_t start;
        std::uint64_t end;
    };

    void addRange(const ImageView& stretch);
    void pad(const ImageView& image, std::span<std::uint8_t> piece, std::uint64_t start) const;
    void fill(std::span<std::uint8_t> piece, std::uint64_t start) const;

    static constexpr std::size_t pieceSize = std::size_t{1} << 16U;

    std::size_t unit_;
    Padding padding_;
    std::vector<ImageView> images_;  ///< in the order of their insertion
    std::vector<Range> ranges_;      ///< of units, ascending and apart, after `finish`
    mutable std::vector<std::uint8_t> piece_ = std::vector<std::uint8_t>(pieceSize);
};

}  // namespace Io::Export
