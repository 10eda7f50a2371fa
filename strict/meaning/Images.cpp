#include "strict/meaning/Images.hpp"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

#include "buffer/Difference.hpp"
#include "buffer/MemoryBuffer.hpp"
#include "buffer/Overlap.hpp"
#include "buffer/Regrouping.hpp"

namespace Strict {

namespace {

using Buffer::Area;
using Buffer::AreaList;
using Buffer::MemoryBuffer;
using Buffer::OverlapRule;
using Parser::Part;
using Parser::Role;
using Parser::Statement;
using Parser::WrapperLib::CmdContext;

std::optional<Area> common(const Area& one, const Area& other) {
    if (one.length == 0 || other.length == 0) return std::nullopt;
    return one.clippedTo(other);
}

/// From the lowest start to the highest end.
Area spanOf(const AreaList& areas) {
    if (areas.empty()) return {};
    std::uint64_t start = areas.front().start;
    std::uint64_t end = 0;
    for (const Area& area : areas) {
        start = std::min(start, area.start);
        end = std::max(end, area.end());
    }
    return {start, end - start};
}

/// The range that the statement gives its image before that is moved, if that is known.
///
/// @param sources  the ranges of the images that it is made of; nothing if one is not known
std::optional<Area> builtRange(const Statement& statement, const std::optional<AreaList>& sources) {
    if (const Part* const range = statement.last(Role::Range)) {
        const Area area = statement.areaOf(*range);
        if (area != Area{}) return area;
    }
    const AreaList areas = statement.areas();
    if (!areas.empty()) return spanOf(areas);
    if (statement.has(Role::InputFile)) return std::nullopt;
    if (const Part* const values = statement.last(Role::Bytes))
        return Area{0, statement.bytesOf(*values)};
    return sources ? std::optional(spanOf(*sources)) : std::nullopt;
}

/// The bus of a part that describes one; nothing if it describes none that can be.
std::optional<Buffer::Bus> busOf(std::uint64_t lanes, std::uint64_t width) {
    if (lanes == 0 || width == 0 || lanes * width > std::numeric_limits<std::uint32_t>::max())
        return std::nullopt;
    return Buffer::Bus{lanes, width};
}

/// The range of an image of a bus, of its lanes.
///
/// @param built    what the statement cuts all lanes to, if it does
/// @param sources  the ranges of the lanes; nothing if one is not known
std::optional<Area> interleavedRange(const Statement& statement,
                                     const std::optional<AreaList>& sources,
                                     std::optional<Area> cut) {
    const auto width = statement.numbersOf(*statement.last(Role::Interleave)).back().value();
    if (!sources) return std::nullopt;
    const auto bus = busOf(sources->size(), width);
    if (!bus) return std::nullopt;
    AreaList lanes = *sources;
    if (cut) std::ranges::fill(lanes, *cut);
    return Buffer::Regrouping::interleaved(*bus).rangeOf(lanes);
}

/// The range of the lane that a statement takes of an image.
std::optional<Area> laneRange(const Statement& statement, const std::optional<Area>& image) {
    const auto numbers = statement.numbersOf(*statement.last(Role::Lane)).last(3);
    const auto bus = busOf(numbers[1].value(), numbers[2].value());
    if (!image || !bus || numbers[0].value() >= bus->lanes) return std::nullopt;
    return bus->laneArea(numbers[0].value(), *image);
}

/// What `builtRange` is once the statement has put the bytes into their order.
std::optional<Area> arrangedRange(const Statement& statement,
                                  const std::optional<AreaList>& sources) {
    std::optional<Area> range = builtRange(statement, sources);
    if (statement.has(Role::Interleave)) {
        const bool isCut = statement.has(Role::Area) || statement.has(Role::Range);
        range = interleavedRange(statement, sources, isCut ? range : std::nullopt);
    }
    return statement.has(Role::Lane) ? laneRange(statement, range) : range;
}

/// The first of some `united` areas that ends after an address.
AreaList::const_iterator firstEndingAfter(const AreaList& areas, std::uint64_t address) {
    return std::ranges::upper_bound(areas, address, {}, &Area::end);
}

/// Two of them have an address in common.
bool overlap(AreaList areas) {
    std::erase_if(areas, [](const Area& area) { return area.length == 0; });
    std::ranges::sort(areas, {}, &Area::start);
    return std::ranges::adjacent_find(areas, [](const Area& lower, const Area& upper) {
               return lower.end() > upper.start;
           }) != areas.end();
}

/// Where `image`, `distance` further up, has other effective bytes than `source` in `area`, by the
/// addresses of `image`.
AreaList differences(const MemoryBuffer& source, const MemoryBuffer& image, const Area& area,
                     std::uint64_t distance) {
    const auto before = source.viewRange(area.start, area.length);
    const auto after = image.viewRange(area.start + distance, area.length);
    if (before.size() != after.size()) return {};
    return Buffer::effectiveDifferences(before, after, area.start + distance);
}

const MemoryBuffer& bufferOf(const CmdContext& context, std::string_view name) {
    return context.buffers.at(std::string(name));
}

}  // namespace

AreaList clipped(AreaList areas, const Area& other) {
    std::size_t kept = 0;
    for (const Area& area : areas)
        if (const auto part = common(area, other)) areas[kept++] = *part;
    areas.resize(kept);
    return areas;
}

AreaList clipped(const AreaList& areas, const AreaList& others) {
    const AreaList sorted = united(others);
    AreaList parts;
    for (const Area& area : areas)
        for (auto other = firstEndingAfter(sorted, area.start);
             other != sorted.end() && other->start < area.end(); ++other)
            if (const auto part = common(area, *other)) parts.push_back(*part);
    return parts;
}

AreaList united(AreaList areas) {
    std::ranges::sort(areas, {}, &Area::start);
    AreaList result;
    for (const Area& area : areas) {
        if (area.length == 0) continue;
        if (result.empty() || result.back().end() < area.start)
            result.push_back(area);
        else
            result.back().length = std::max(result.back().end(), area.end()) - result.back().start;
    }
    return result;
}

AreaList moved(AreaList areas, std::uint64_t distance) {
    for (Area& area : areas) area.start += distance;
    return areas;
}

bool haveCommon(const AreaList& areas, const Area& other) {
    return std::ranges::any_of(
        areas, [&other](const Area& area) { return common(area, other).has_value(); });
}

bool haveCommon(const AreaList& areas, const AreaList& others) {
    const AreaList sorted = united(others);
    return std::ranges::any_of(areas, [&sorted](const Area& area) {
        const auto other = firstEndingAfter(sorted, area.start);
        return other != sorted.end() && common(area, *other).has_value();
    });
}

std::optional<std::size_t> Images::find(std::string_view name) const {
    const auto found = numbers_.find(name);
    return found == numbers_.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::size_t> Images::findUsed(const Statement& statement,
                                            std::vector<std::size_t>& used) const {
    std::optional<std::size_t> changed;
    for (const Part& part : statement.parts) {
        if (part.role != Role::UsesImage && part.role != Role::ChangesImage) continue;
        const auto image = find(part.text);
        if (image) used.push_back(*image);
        if (part.role == Role::ChangesImage) changed = image;
    }
    return changed;
}

std::optional<std::size_t> Images::make(const Statement& statement,
                                        std::span<const std::size_t> sources,
                                        const CmdContext* context) {
    const std::string_view name = statement.textOf(Role::MakesImage);
    const bool isMade = context == nullptr || context->buffers.contains(std::string(name));
    const std::size_t number = images_.size();
    if (!isMade || !numbers_.try_emplace(name, number).second) return std::nullopt;
    Image image;
    image.name = name;
    image.madeAt = changes_.size();
    image.isFollowed = !sources.empty();
    for (const std::size_t source : sources) follow(source);
    link(image, statement, sources, context);
    if (context != nullptr) image.range = bufferOf(*context, name).getArea();
    images_.push_back(std::move(image));
    return number;
}

void Images::makeOpen(const Statement& statement) {
    const std::string_view name = statement.textOf(Role::MakesImage);
    if (!numbers_.try_emplace(name, images_.size()).second) return;
    Image image;
    image.name = name;
    image.madeAt = changes_.size();
    image.isExact = false;
    images_.push_back(std::move(image));
}

void Images::link(Image& image, const Statement& statement, std::span<const std::size_t> sources,
                  const CmdContext* context) {
    std::optional<AreaList> ranges(std::in_place);
    for (const std::size_t source : sources) {
        image.isExact = image.isExact && images_[source].isExact;
        if (ranges && images_[source].range)
            ranges->push_back(*images_[source].range);
        else
            ranges.reset();
    }
    image.range = arrangedRange(statement, ranges);
    std::uint64_t distance = 0;
    if (const Part* const address = statement.last(Role::Address)) {
        if (!image.range) {
            image.isExact = image.isExact && sources.empty();
            return;
        }
        distance = statement.numbersOf(*address).back().value() - image.range->start;
    }
    if (statement.roles.hasAny({Role::Lane, Role::Interleave, Role::SwapBytes})) {
        // Its bytes are at other places, at which no value can be looked for.
        if (image.range) image.range->start += distance;
        return;
    }
    const Area held = image.range.value_or(everywhere);
    for (const std::size_t source : sources) {
        const Area had = images_[source].range.value_or(everywhere);
        AreaList taken = statement.has(Role::Area) ? statement.areas() : AreaList{had};
        taken = clipped(clipped(std::move(taken), had), held);
        image.links.push_back({source, std::move(taken), distance, {}});
    }
    const bool isMerge = sources.size() > 1 && (!ranges || overlap(*ranges));
    if (isMerge && context == nullptr) image.isExact = false;
    takeOver(image, statement, isMerge ? context : nullptr);
    image.changes.move(distance);
    if (image.range) image.range->start += distance;
    if (!isMerge || context == nullptr) return;
    const MemoryBuffer& result = bufferOf(*context, image.name);
    for (Link& link : image.links)
        for (const Area& area : link.areas) {
            const AreaList lost =
                differences(bufferOf(*context, images_[link.image].name), result, area, distance);
            link.lost.insert(link.lost.end(), lost.begin(), lost.end());
        }
}

/// Takes over the changes of an image's sources. Where several sources have an address, those of
/// the one whose byte counts are taken.
///
/// @param merged  null if no two sources have an address in common
void Images::takeOver(Image& image, const Statement& statement, const CmdContext* merged) {
    const bool isChanged = std::ranges::any_of(
        image.links, [this](const Link& link) { return !images_[link.image].changes.empty(); });
    if (!isChanged) return;
    for (const Link& link : image.links)
        for (const Area& area : link.areas) image.changes.lay(images_[link.image].changes, area);
    if (merged == nullptr) return;
    const auto rule = statement.choiceOf(Role::Overlap, OverlapRule::NotSet);
    std::vector<const Link*> order;
    for (const Link& link : image.links) order.push_back(&link);
    if (rule == OverlapRule::First) std::ranges::reverse(order);
    for (const Link* const link : order)
        for (const Area& area : link->areas) {
            const Image& source = images_[link->image];
            const AreaList winning = rule == OverlapRule::NotSet
                                         ? AreaList{area}
                                         : writtenAreas(bufferOf(*merged, source.name), area);
            for (const Area& part : winning) {
                image.changes.erase(part);
                image.changes.lay(source.changes, part);
            }
        }
}

void Images::noteSpread(std::size_t image, std::size_t value) {
    std::vector<std::size_t>& spread = images_[image].spread;
    const auto place = std::ranges::lower_bound(spread, value);
    if (place == spread.end() || *place != value) spread.insert(place, value);
}

void Images::change(std::size_t image, const Change& change, const AreaList& areas) {
    for (const Area& area : areas) images_[image].changes.set(area, changes_.size());
    changes_.push_back(change);
}

}  // namespace Strict
