#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "buffer/MemoryBuffer.hpp"
#include "buffer/Regrouping.hpp"
#include "facts/Facts.hpp"
#include "parser/commands/ImageObserver.hpp"

namespace Parser::WrapperLib {

/// Reports the image and returns false unless its range begins and ends at multiples of `wordSize`.
///
/// @param name  of what the statement makes
bool isOfWords(const Buffer::MemoryBuffer& image, std::uint64_t wordSize, Facts::WordUse use,
               Facts::Subject subject, std::string_view name);

/// The bus that `lanes` images of one lane each make; nothing, after a report, if it cannot be.
///
/// @param name  of the image that the statement makes
std::optional<Buffer::Bus> busOf(std::uint32_t lanes, std::uint32_t width, std::string_view name);

/// What a statement that makes an image does with the order of its bytes. The words of
/// `-swapBytes` are those of the bus, so their bytes are reversed before a lane is taken out of it
/// and after lanes have become one.
struct Arrangement {
    /// The numbers of `-useLane`: which lane, of how many, of how many bytes.
    struct Lane {
        std::uint32_t lane;
        std::uint32_t lanes;
        std::uint32_t width;
    };

    std::optional<Lane> lane = {};
    std::optional<std::uint32_t> interleave = {};  ///< the bytes of a lane
    std::uint32_t wordSize = 0;                    ///< of swapped bytes; 0 leaves them

    /// Whether the numbers describe what can be done; reports it if not.
    ///
    /// @param name    of the image that the statement makes
    /// @param images  how many the statement names
    bool isPossible(std::string_view name, std::size_t images) const;

    /// The image of a bus, of its lanes; nothing after a report. It must be possible.
    ///
    /// @param names     of the lanes
    /// @param observer  null for nobody
    std::optional<Buffer::MemoryBuffer> interleaved(
        std::string_view name, std::span<const std::string> names,
        std::span<const Buffer::MemoryBuffer* const> lanes, ImageObserver* observer) const;

    /// `image` with its bytes in order, of which those of lanes are there already; nothing after a
    /// report. It must be possible.
    std::optional<Buffer::MemoryBuffer> arranged(std::string_view name, Buffer::MemoryBuffer image,
                                                 ImageObserver* observer) const;
};

}  // namespace Parser::WrapperLib
