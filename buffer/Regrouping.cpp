#include "buffer/Regrouping.hpp"

#include <array>
#include <limits>
#include <optional>
#include <vector>

#include "buffer/ElementView.hpp"
#include "buffer/MemoryElement.hpp"

namespace Buffer {

namespace {

constexpr std::uint64_t nowhere = std::numeric_limits<std::uint64_t>::max();

/// Few elements, since as many are looked at in vain where an area of a source ends.
constexpr std::size_t mostGathered = 256;

/// Elements of a new image that follow each other, gathered one by one.
class Gathered {
public:
    void add(const MemoryElement& element) { elements_[count_++] = element; }

    /// Lets `image`, whose elements are still those of a new one, have them from `start` on.
    void giveTo(MemoryBuffer& image, std::uint64_t start) const {
        std::array<std::uint8_t, mostGathered> bytes;
        for (std::size_t at = 0; at < count_;) {
            const bool isWritten = elements_[at].hasValue != 0;
            std::size_t size = 0;
            bool isFilled = false;
            for (; at + size < count_ && (elements_[at + size].hasValue != 0) == isWritten;
                 ++size) {
                bytes[size] = elements_[at + size].effectiveByte();
                isFilled = isFilled || bytes[size] != 0;
            }
            const std::span<const std::uint8_t> run = std::span(bytes).first(size);
            if (isWritten)
                image.overlayBytes(run, start + at);
            else if (isFilled)
                image.fillPattern(run, start + at, size);
            at += size;
        }
    }

private:
    std::array<MemoryElement, mostGathered> elements_;
    std::size_t count_ = 0;
};

/// An image that a new one is made of.
class Source {
public:
    explicit Source(const MemoryBuffer& image)
        : area_(image.getArea()), elements_(image.viewElements()) {}

    MemoryElement at(std::uint64_t address) const {
        const std::uint64_t place = address - area_.start;
        return place < area_.length ? elements_[static_cast<std::size_t>(place)] : MemoryElement{};
    }

    /// The first address from `from` on that may have a byte or a filler, or `nowhere`. An address
    /// to begin with is never below the one before: a long gap is searched once.
    std::uint64_t next(std::uint64_t from) {
        if (next_ && *next_ >= from) return *next_;
        if (from < area_.start) from = area_.start;
        next_ = nowhere;
        if (from >= area_.end()) return nowhere;
        const auto at = static_cast<std::size_t>(from - area_.start);
        const std::size_t found = elements_.fillers() != nullptr ? elements_.skipUntouched(at)
                                                                 : elements_.findWritten(at);
        if (found != elements_.size()) next_ = area_.start + found;
        return *next_;
    }

private:
    Area area_;
    ElementView elements_;
    std::optional<std::uint64_t> next_;
};

}  // namespace

Regrouping::Origin Regrouping::originOf(std::uint64_t address) const {
    if (kind_ == Kind::Lane) return {0, bus_.busAddress(lane_, address)};
    if (kind_ == Kind::Swapped) return {0, address ^ (bus_.width - 1)};
    const std::uint64_t lane = bus_.laneOf(address);
    return {static_cast<std::size_t>(lane), bus_.laneAddress(lane, address)};
}

std::uint64_t Regrouping::sourceFrom(std::size_t source, std::uint64_t address) const {
    if (kind_ == Kind::Lane) return bus_.busAddress(lane_, address);
    if (kind_ == Kind::Swapped) return address & ~(bus_.width - 1);
    return bus_.laneAddress(source, address);
}

std::uint64_t Regrouping::placeFrom(std::size_t source, std::uint64_t address) const {
    if (kind_ == Kind::Lane) return bus_.laneAddress(lane_, address);
    if (kind_ == Kind::Swapped) return address & ~(bus_.width - 1);
    return bus_.busAddress(source, address);
}

Area Regrouping::rangeOf(std::span<const Area> sources) const {
    if (kind_ == Kind::Lane) return bus_.laneArea(lane_, sources.front());
    if (kind_ == Kind::Swapped) return sources.front();
    Area range{nowhere, 0};
    std::uint64_t end = 0;
    for (std::size_t lane = 0; lane < sources.size(); ++lane) {
        if (sources[lane].length == 0) continue;
        const Area area = bus_.busArea(lane, sources[lane]);
        range.start = std::min(range.start, area.start);
        end = std::max(end, area.end());
    }
    return end == 0 ? Area{} : Area{range.start, end - range.start};
}

AreaList Regrouping::placesOf(const Area& area) const {
    if (kind_ == Kind::Lane) return {bus_.laneArea(lane_, area)};
    AreaList places;
    // The words that the area has as a whole keep their places.
    const std::uint64_t mask = bus_.width - 1;
    const std::uint64_t first = std::min((area.start + mask) & ~mask, area.end());
    const std::uint64_t last = std::max(area.end() & ~mask, first);
    for (std::uint64_t at = first; at > area.start; --at) places.push_back({(at - 1) ^ mask, 1});
    if (last != first) places.push_back({first, last - first});
    for (std::uint64_t at = area.end(); at > last; --at) places.push_back({(at - 1) ^ mask, 1});
    return places;
}

MemoryBuffer regrouped(std::span<const MemoryBuffer* const> images, const Regrouping& regrouping) {
    std::vector<Source> sources;
    std::vector<Area> ranges;
    for (const MemoryBuffer* const image : images) {
        sources.emplace_back(*image);
        ranges.push_back(image->getArea());
    }
    const Area range = regrouping.rangeOf(ranges);
    MemoryBuffer result(range.start, range.length);
    // A range that no image can have was reported.
    const std::uint64_t end = result.getArea().end();
    for (std::uint64_t at = range.start; at < end;) {
        std::uint64_t next = nowhere;
        for (std::size_t i = 0; i < sources.size(); ++i)
            if (const std::uint64_t found = sources[i].next(regrouping.sourceFrom(i, at));
                found != nowhere)
                next = std::min(next, regrouping.placeFrom(i, found));
        if (next >= end) break;
        const std::uint64_t start = std::max(at, next);
        at = std::min(start + mostGathered, end);
        Gathered gathered;
        for (std::uint64_t address = start; address < at; ++address) {
            const Regrouping::Origin origin = regrouping.originOf(address);
            gathered.add(sources[origin.source].at(origin.address));
        }
        gathered.giveTo(result, start);
    }
    return result;
}

}  // namespace Buffer
