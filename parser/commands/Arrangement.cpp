#include "parser/commands/Arrangement.hpp"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "facts/Listener.hpp"

namespace Parser::WrapperLib {

namespace {

using Buffer::Bus;
using Buffer::MemoryBuffer;
using Buffer::Regrouping;
using Facts::BusFault;
using Facts::Subject;
using Facts::WordUse;

/// Hands the outcome to the observer, if there is one.
MemoryBuffer regroup(const MemoryBuffer& image, const Regrouping& regrouping,
                     ImageObserver* observer) {
    MemoryBuffer result = Buffer::regrouped(std::array{&image}, regrouping);
    if (observer != nullptr) observer->onRegroup(regrouping);
    return result;
}

/// The addresses of a bus of those lanes fit into 64 bits; reports it if not.
bool isAddressable(const Bus& bus, std::span<const MemoryBuffer* const> lanes) {
    constexpr std::uint64_t highest = std::numeric_limits<std::uint64_t>::max();
    return std::ranges::all_of(lanes, [&](const MemoryBuffer* lane) {
        if (lane->getArea().end() / bus.width < highest / bus.row()) return true;
        Facts::report(Facts::ImageNotAddressable{highest, lane->getDataLength() * bus.lanes});
        return false;
    });
}

}  // namespace

bool isOfWords(const MemoryBuffer& image, std::uint64_t wordSize, WordUse use, Subject subject,
               std::string_view name) {
    const Buffer::Area area = image.getArea();
    if (area.start % wordSize == 0 && area.end() % wordSize == 0) return true;
    Facts::report(Facts::ImageNotOfWords{subject, name, use, area.start, area.end(),
                                         static_cast<std::uint32_t>(wordSize)});
    return false;
}

std::optional<Bus> busOf(std::uint32_t lanes, std::uint32_t width, std::string_view name) {
    const Bus bus{lanes, width};
    const auto refused = [&](BusFault fault) {
        Facts::report(Facts::BusRefused{name, fault, 0, lanes});
        return std::nullopt;
    };
    if (width == 0) return refused(BusFault::WidthZero);
    if (lanes == 0) return refused(BusFault::LanesZero);
    if (bus.row() > std::numeric_limits<std::uint32_t>::max()) return refused(BusFault::RowTooLong);
    return bus;
}

bool Arrangement::isPossible(std::string_view name, std::size_t images) const {
    if (interleave) {
        if (images < 2) {
            Facts::report(Facts::BusRefused{name, BusFault::ImagesFew, 0,
                                            static_cast<std::uint32_t>(images)});
            return false;
        }
        if (!busOf(static_cast<std::uint32_t>(images), *interleave, name)) return false;
    }
    if (!lane) return true;
    if (!busOf(lane->lanes, lane->width, name)) return false;
    if (lane->lane < lane->lanes) return true;
    Facts::report(Facts::BusRefused{name, BusFault::LaneUnknown, lane->lane, lane->lanes});
    return false;
}

std::optional<MemoryBuffer> Arrangement::interleaved(std::string_view name,
                                                     std::span<const std::string> names,
                                                     std::span<const MemoryBuffer* const> lanes,
                                                     ImageObserver* observer) const {
    const Bus bus{lanes.size(), *interleave};
    for (const MemoryBuffer* const image : lanes)
        if (!isOfWords(*image, bus.width, WordUse::Interleaved, Subject::Buffer, name))
            return std::nullopt;
    if (!isAddressable(bus, lanes)) return std::nullopt;
    const Regrouping regrouping = Regrouping::interleaved(bus);
    MemoryBuffer result = Buffer::regrouped(lanes, regrouping);
    if (observer != nullptr) observer->onInterleave(regrouping, names, lanes, result);
    return result;
}

std::optional<MemoryBuffer> Arrangement::arranged(std::string_view name, MemoryBuffer image,
                                                  ImageObserver* observer) const {
    if (wordSize != 0) {
        if (!isOfWords(image, wordSize, WordUse::SwappedBytes, Subject::Buffer, name))
            return std::nullopt;
        image = regroup(image, Regrouping::swapped(wordSize), observer);
    }
    if (lane) {
        if (!isOfWords(image, lane->width, WordUse::Lane, Subject::Buffer, name))
            return std::nullopt;
        const Bus bus{lane->lanes, lane->width};
        image = regroup(image, Regrouping::lane(bus, lane->lane), observer);
    }
    return image;
}

}  // namespace Parser::WrapperLib
