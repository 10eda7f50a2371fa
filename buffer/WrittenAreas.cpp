#include "buffer/WrittenAreas.hpp"

#include <algorithm>
#include <bit>
#include <cstddef>

namespace Buffer {

namespace {

/// Appends the runs of set flags of one word; the first flag is that of `start`.
void append(AreaList& areas, WrittenBits::Word flags, std::uint64_t start) {
    while (flags != 0) {
        const auto gap = static_cast<std::size_t>(std::countr_zero(flags));
        const auto length = static_cast<std::size_t>(std::countr_one(flags >> gap));
        const Area run{start + gap, length};
        if (!areas.empty() && areas.back().end() == run.start)
            areas.back().length += length;
        else
            areas.push_back(run);
        const std::size_t end = gap + length;
        flags = end == WrittenBits::perWord ? 0 : flags >> end << end;
    }
}

}  // namespace

AreaList writtenAreas(const MemoryBuffer& image) {
    const ElementView elements = image.viewElements();
    AreaList areas;
    for (std::size_t at = 0; at < elements.size(); at += WrittenBits::perWord) {
        const std::size_t count = std::min(WrittenBits::perWord, elements.size() - at);
        append(areas, elements.written(at, count), image.getStartAddress() + at);
    }
    return areas;
}

}  // namespace Buffer
