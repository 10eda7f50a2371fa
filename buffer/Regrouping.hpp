#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "buffer/Area.hpp"
#include "buffer/MemoryBuffer.hpp"

namespace Buffer {

/// A data bus with memories side by side, its lanes: of each row of `lanes * width` bytes a lane
/// has `width`, lane 0 the first ones. A lane counts its own bytes alone, so what it has of row r
/// begins at its address r * `width`.
///
/// Neither number is 0.
struct Bus {
    std::uint64_t lanes;
    std::uint64_t width;  ///< bytes

    constexpr std::uint64_t row() const { return lanes * width; }

    /// The lane that has the byte at an address of the bus.
    constexpr std::uint64_t laneOf(std::uint64_t address) const { return address / width % lanes; }

    /// How many bytes a lane has below an address of the bus, which is the lane's own address of
    /// its first byte from there on.
    constexpr std::uint64_t laneAddress(std::uint64_t lane, std::uint64_t address) const {
        const std::uint64_t first = lane * width;
        return address / row() * width + std::clamp(address % row(), first, first + width) - first;
    }

    /// The same for the bytes of an area of the bus.
    constexpr Area laneArea(std::uint64_t lane, const Area& area) const {
        const std::uint64_t start = laneAddress(lane, area.start);
        return {start, laneAddress(lane, area.end()) - start};
    }

    /// Where the bus has the byte at an address of a lane.
    constexpr std::uint64_t busAddress(std::uint64_t lane, std::uint64_t address) const {
        return address / width * row() + lane * width + address % width;
    }

    /// From the first to the last byte of an area of a lane, by the addresses of the bus.
    constexpr Area busArea(std::uint64_t lane, const Area& area) const {
        if (area.length == 0) return {busAddress(lane, area.start), 0};
        const std::uint64_t start = busAddress(lane, area.start);
        return {start, busAddress(lane, area.end() - 1) + 1 - start};
    }
};

/// How a new image gets the bytes of other ones in another order: which byte goes where.
class Regrouping {
public:
    /// One lane of a bus, of the image of the bus.
    static Regrouping lane(const Bus& bus, std::uint64_t lane) { return {Kind::Lane, bus, lane}; }

    /// A bus, of the images of all its lanes.
    static Regrouping interleaved(const Bus& bus) { return {Kind::Interleaved, bus, 0}; }

    /// An image whose words, which begin at multiples of their size, have their bytes reversed.
    ///
    /// @param wordSize  in bytes, a power of two
    static Regrouping swapped(std::uint32_t wordSize) { return {Kind::Swapped, {1, wordSize}, 0}; }

    /// A byte of an image that the new one is made of.
    struct Origin {
        std::size_t source;     ///< the number of the image
        std::uint64_t address;  ///< in that
    };

    /// What the new image gets at `address`.
    Origin originOf(std::uint64_t address) const;

    /// The lowest address of a source whose byte may go to `address` or beyond it.
    std::uint64_t sourceFrom(std::size_t source, std::uint64_t address) const;

    /// The lowest address that a byte of a source from `address` on goes to.
    std::uint64_t placeFrom(std::size_t source, std::uint64_t address) const;

    /// The range of the new image, from the first to the last byte that it gets.
    ///
    /// @param sources  the ranges of the images; for swapped bytes one of whole words
    Area rangeOf(std::span<const Area> sources) const;

    /// The areas, ascending, that the bytes of an area of a source go to. One for each group of
    /// bytes that stays together, so those of a bus are not for the asking.
    AreaList placesOf(const Area& area) const;

private:
    enum class Kind : std::uint8_t { Lane, Interleaved, Swapped };

    Regrouping(Kind kind, const Bus& bus, std::uint64_t lane)
        : kind_(kind), bus_(bus), lane_(lane) {}

    Kind kind_;
    Bus bus_;  ///< for swapped bytes the word is its width
    std::uint64_t lane_;
};

/// A new image with the bytes, flags and fillers of `images` in their new order, and with the byte
/// order tag of a new image. An image that cannot be is reported and empty, as by its constructor.
MemoryBuffer regrouped(std::span<const MemoryBuffer* const> images, const Regrouping& regrouping);

}  // namespace Buffer
