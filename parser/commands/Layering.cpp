#include "parser/commands/Layering.hpp"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <optional>

#include "facts/Listener.hpp"

namespace Parser::WrapperLib {

namespace {

using Buffer::Area;
using Buffer::MemoryBuffer;
using Buffer::OverlapRule;

/// Images whose ranges are connected, by their numbers, ascending, and the range of all of them.
struct Group {
    Area range;
    std::vector<std::size_t> members;
};

/// The groups of images, by their first members.
std::vector<Group> groupsOf(const std::vector<NamedImage>& images) {
    std::vector<std::size_t> order(images.size());
    std::iota(order.begin(), order.end(), 0);
    std::ranges::stable_sort(order, {},
                             [&](std::size_t i) { return images[i].image->getStartAddress(); });
    std::vector<Group> groups;
    for (const std::size_t i : order) {
        const Area area = images[i].image->getArea();
        if (groups.empty() || area.length == 0 || groups.back().range.length == 0 ||
            groups.back().range.end() <= area.start) {
            groups.push_back({area, {i}});
            continue;
        }
        Group& group = groups.back();
        group.range.length = std::max(group.range.end(), area.end()) - group.range.start;
        group.members.push_back(i);
    }
    for (Group& group : groups) std::ranges::sort(group.members);
    std::ranges::sort(groups, {}, [](const Group& group) { return group.members.front(); });
    return groups;
}

/// What a rule refuses in an overlap; nothing if it is allowed.
std::optional<Facts::OverlapRefused> refusedBy(OverlapRule rule, const Buffer::Overlap& overlap,
                                               std::string_view source,
                                               const LayeringTarget& target) {
    const bool isDifferent = overlap.differences != 0;
    if (rule == OverlapRule::Same && !isDifferent) return std::nullopt;
    return Facts::OverlapRefused{target.subject,
                                 target.name,
                                 source,
                                 overlap.area.start,
                                 overlap.area.end(),
                                 isDifferent,
                                 isDifferent ? overlap.firstDifference : overlap.area.start,
                                 overlap.earlier,
                                 overlap.later};
}

}  // namespace

bool refuses(OverlapRule rule, const Buffer::Overlap& overlap, std::string_view source,
             const LayeringTarget& target) {
    const auto refused = refusedBy(rule, overlap, source, target);
    if (refused) Facts::report(*refused);
    return refused.has_value();
}

bool refuses(OverlapRule rule, const Buffer::Overlap& overlap, std::string_view path,
             const Io::Import::TessaronImportApi& file, std::uint32_t addressUnit,
             const LayeringTarget& target) {
    auto refused = refusedBy(rule, overlap, path, target);
    if (!refused) return false;
    refused->likelyUnit = file.likelyAddressUnit();
    refused->format = file.getFormat();
    refused->addressUnit = addressUnit;
    Facts::report(*refused);
    return true;
}

bool lay(MemoryBuffer& result, const MemoryBuffer& part, OverlapRule rule, std::string_view source,
         const LayeringTarget& target) {
    if (rule == OverlapRule::NotSet) {
        result.overlay(part);
        return true;
    }
    if (isRefusing(rule))
        for (const Buffer::Overlap& overlap : Buffer::overlaps(result, part))
            if (refuses(rule, overlap, source, target)) return false;
    result.merge(part, rule == OverlapRule::First);
    return true;
}

bool Layers::add(const std::vector<NamedImage>& images, OverlapRule rule,
                 const LayeringTarget& target) {
    if (rule == OverlapRule::NotSet) {
        for (const NamedImage& image : images) images_.push_back(image.image);
        return true;
    }
    for (const Group& group : groupsOf(images)) {
        if (group.members.size() == 1) {
            images_.push_back(images[group.members.front()].image);
            continue;
        }
        MemoryBuffer& merged = merged_.emplace_back(group.range.start, group.range.length);
        for (const std::size_t i : group.members)
            if (!lay(merged, *images[i].image, rule, images[i].name, target)) return false;
        images_.push_back(&merged);
    }
    return true;
}

}  // namespace Parser::WrapperLib
