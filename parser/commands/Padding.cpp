#include "parser/commands/Padding.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <span>
#include <utility>

#include "buffer/Overlap.hpp"
#include "facts/Facts.hpp"
#include "facts/Listener.hpp"

namespace Parser::WrapperLib {

namespace {

using Buffer::Area;
using Buffer::AreaList;
using Buffer::MemoryBuffer;

std::uint8_t fillerAt(const MemoryBuffer& image, std::uint64_t address) {
    return image.viewRange(address, 1)[0].filler;
}

/// Lays a filler under the addresses of `area`, which no image has.
void layFiller(MemoryBuffer& image, const Area& area, std::uint8_t filler) {
    if (area.length != 0) image.fillPattern(std::span(&filler, 1), area.start, area.length);
}

/// Lays fillers under what is beyond the members and between them.
void fillBetween(MemoryBuffer& image, std::vector<const MemoryBuffer*> members) {
    std::ranges::stable_sort(members, {}, &MemoryBuffer::getStartAddress);
    const MemoryBuffer* last = members.front();
    const Area range = image.getArea();
    layFiller(image, {range.start, last->getStartAddress() - range.start},
              fillerAt(*last, last->getStartAddress()));
    for (const MemoryBuffer* const member : members) {
        const std::uint64_t end = last->getArea().end();
        if (member->getStartAddress() > end)
            layFiller(image, {end, member->getStartAddress() - end}, fillerAt(*last, end - 1));
        if (member->getArea().end() > end) last = member;
    }
    const std::uint64_t end = last->getArea().end();
    layFiller(image, {end, range.end() - end}, fillerAt(*last, end - 1));
}

/// Writes the fillers of the unwritten addresses of `area`, so that they are bytes.
void writeFillers(MemoryBuffer& image, const Area& area) {
    std::array<std::uint8_t, 4096> bytes;
    for (std::uint64_t at = area.start; at < area.end();) {
        const auto elements =
            image.viewRange(at, std::min<std::uint64_t>(area.end() - at, bytes.size()));
        const std::size_t first = elements.findUnwritten(0);
        const std::size_t end = elements.findWritten(first);
        if (first != end) {
            elements.part(first, end - first).copyBytes(bytes.data());
            image.writePattern(std::span(bytes).first(end - first), at + first, end - first);
        }
        at += end;
    }
}

}  // namespace

Area Padding::aligned(const Area& area) const {
    if (!alignment) return area;
    const std::uint64_t rest = area.end() % *alignment;
    const std::uint64_t start = area.start - area.start % *alignment;
    const std::uint64_t end = rest == 0 ? area.end() : area.end() + (*alignment - rest);
    return {start, end - start};
}

/// The runs of written addresses of `image`, as they are once they are filled.
AreaList Padding::filledRuns(const MemoryBuffer& image) const {
    AreaList runs;
    for (const Area& written : Buffer::writtenAreas(image, image.getArea())) {
        if (!runs.empty() && written.start - runs.back().end() <= shortGaps.value_or(0))
            runs.back().length = written.end() - runs.back().start;
        else
            runs.push_back(written);
    }
    for (Area& run : runs) run = aligned(run);
    return runs;
}

void Padding::fill(MemoryBuffer& image) const {
    for (const Area& run : filledRuns(image)) writeFillers(image, run);
}

/// The groups of the images, ascending; nothing, after a report, if an end is not an address.
std::optional<std::vector<Padding::Group>> Padding::groupsOf(
    const std::vector<const MemoryBuffer*>& images) const {
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < images.size(); ++i)
        if (images[i]->getDataLength() != 0) order.push_back(i);
    std::ranges::stable_sort(order, {},
                             [&](std::size_t i) { return images[i]->getStartAddress(); });
    std::vector<Group> groups;
    for (const std::size_t i : order) {
        const Area area = images[i]->getArea();
        if (area.end() > std::numeric_limits<std::uint64_t>::max() - alignment.value_or(0)) {
            Facts::report(Facts::ImageNotAddressable{area.start, area.length});
            return std::nullopt;
        }
        const Area range = aligned(area);
        const std::uint64_t reach = shortGaps.value_or(0);
        if (groups.empty() || groups.back().range.end() + reach < range.start) {
            groups.push_back({range, {i}});
            continue;
        }
        Area& whole = groups.back().range;
        whole.length = std::max(whole.end(), range.end()) - whole.start;
        groups.back().members.push_back(i);
    }
    for (Group& group : groups) std::ranges::sort(group.members);
    return groups;
}

bool Padding::apply(std::vector<const MemoryBuffer*>& images, std::deque<MemoryBuffer>& padded,
                    bool isSkipping, std::string_view file) const {
    if (!isGiven()) return true;
    if (alignment == 0) {
        Facts::report(Facts::AlignmentZero{file});
        return false;
    }
    const auto groups = groupsOf(images);
    if (!groups) return false;
    for (const Group& group : *groups) {
        MemoryBuffer& image = padded.emplace_back(group.range.start, group.range.length);
        if (image.getDataLength() != group.range.length) return false;
        std::vector<const MemoryBuffer*> members;
        for (const std::size_t i : group.members) {
            members.push_back(images[i]);
            image.merge(*images[i], false);
        }
        fillBetween(image, std::move(members));
        if (isSkipping) fill(image);
    }
    images.clear();
    for (const MemoryBuffer& image : padded) images.push_back(&image);
    return true;
}

}  // namespace Parser::WrapperLib
