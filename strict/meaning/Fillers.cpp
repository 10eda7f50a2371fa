#include "strict/meaning/Fillers.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "buffer/MemoryBuffer.hpp"
#include "buffer/Overlap.hpp"

namespace Strict {

namespace {

using Buffer::Area;
using Buffer::AreaList;
using Buffer::MemoryBuffer;
using Parser::Number;
using Parser::Part;
using Parser::Role;

/// The effective bytes of `gap` are not those of the pattern, which begins at `start`.
bool isChanged(const MemoryBuffer& image, const Area& gap, std::span<const Number> pattern,
               std::uint64_t start) {
    std::array<std::uint8_t, 4096> piece{};
    const auto elements = image.viewRange(gap.start, gap.length);
    std::size_t next = static_cast<std::size_t>((gap.start - start) % pattern.size());
    for (std::size_t at = 0; at < elements.size(); at += piece.size()) {
        const std::size_t count = std::min(piece.size(), elements.size() - at);
        elements.part(at, count).copyBytes(piece.data());
        for (const std::uint8_t byte : std::span(piece).first(count)) {
            if (byte != static_cast<std::uint8_t>(pattern[next].value())) return true;
            if (++next == pattern.size()) next = 0;
        }
    }
    return false;
}

void addChanges(const MemoryBuffer& image, const Area& area, std::span<const Number> pattern,
                AreaList& changes) {
    const auto addGap = [&](std::uint64_t from, std::uint64_t to) {
        const Area gap{from, to - from};
        if (from != to && isChanged(image, gap, pattern, area.start)) changes.push_back(gap);
    };
    std::uint64_t at = area.start;
    for (const Area& written : writtenAreas(image, area)) {
        addGap(at, written.start);
        at = written.end();
    }
    addGap(at, area.end());
}

}  // namespace

AreaList fillerChanges(const Parser::Statement& statement,
                       const Parser::WrapperLib::CmdContext& context) {
    AreaList changes;
    const Part* const filler = statement.last(Role::Filler);
    if (filler == nullptr || filler->numberCount == 0) return changes;
    const auto image = context.buffers.find(std::string(statement.textOf(Role::ChangesImage)));
    if (image == context.buffers.end()) return changes;
    const Area range = image->second.getArea();
    AreaList areas = statement.areas();
    if (areas.empty()) areas.push_back(range);
    for (const Area& area : areas)
        if (const auto part = area.clippedTo(range))
            if (part->length != 0)
                addChanges(image->second, *part, statement.numbersOf(*filler), changes);
    return changes;
}

}  // namespace Strict
