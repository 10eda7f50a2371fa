#include "io/import/ParsedData.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <queue>
#include <utility>

#include "io/import/ReaderReports.hpp"
#include "util/records/Records.hpp"

namespace Io::Import {

void ParsedData::append(std::uint64_t address, std::span<const std::uint8_t> bytes) {
    if (bytes.empty()) return;
    reserve();
    std::memcpy(room(), bytes.data(), bytes.size());
    appendInPlace(address * addressUnit_, bytes.size());
}

/// Reserves the memory for all bytes of the file.
void ParsedData::reserve() {
    if (bytes_.size() == 0) bytes_ = Platform::PageBlock(capacity_ + Util::Records::dataSlack);
}

void ParsedData::beginRun(const Buffer::Area& area) {
    const bool isFirst = runs_.empty();
    isAscending_ = isFirst || (isAscending_ && area.start > runs_.back().area.end());
    runs_.push_back({area, size_});
    minAddress_ = isFirst ? area.start : std::min(minAddress_, area.start);
}

void ParsedData::clear() {
    ParsedData empty(reader_, capacity_);
    empty.setAddressUnit(addressUnit_);
    *this = std::move(empty);
}

void ParsedData::finish() {
    dataLength_ = empty() ? 0 : span().length;
    if (!isAscending_) visible_ = visibleParts(false);
}

/// Sweeps over the addresses, from one at which a run begins or ends to the next. In between, the
/// latest of the runs that have begun and not ended is visible, or the earliest of them.
std::vector<ParsedData::Run> ParsedData::visibleParts(bool isFirstVisible) const {
    const auto isHidden = [isFirstVisible](const Run& a, const Run& b) {
        return isFirstVisible ? a.offset > b.offset : a.offset < b.offset;
    };
    std::priority_queue<Run, std::vector<Run>, decltype(isHidden)> begun(isHidden);
    std::vector<Run> sorted = runs_;
    std::ranges::sort(sorted, {}, [](const Run& run) { return run.area.start; });
    std::vector<Run> parts;
    parts.reserve(sorted.size());
    std::uint64_t at = 0;
    for (auto next = sorted.begin(); next != sorted.end() || !begun.empty();) {
        if (begun.empty()) at = next->area.start;
        for (; next != sorted.end() && next->area.start == at; ++next) begun.push(*next);
        const Run& top = begun.top();
        std::uint64_t end = top.area.end();
        if (next != sorted.end()) end = std::min(end, next->area.start);
        parts.push_back({{at, end - at}, top.offset + (at - top.area.start)});
        at = end;
        while (!begun.empty() && begun.top().area.end() <= at) begun.pop();
    }
    return parts;
}

std::uint32_t ParsedData::likelyAddressUnit() const {
    constexpr std::array<std::uint32_t, 2> units{2, 4};
    constexpr std::size_t fewest = 2;  // one may be a slip
    std::size_t within = 0;
    std::array<std::size_t, units.size()> fitting{};
    for (std::size_t i = 1; i < runs_.size(); ++i) {
        const Buffer::Area& before = runs_[i - 1].area;
        const std::uint64_t distance = runs_[i].area.start - before.start;
        if (distance == 0 || distance >= before.length) continue;
        ++within;
        for (std::size_t k = 0; k < units.size(); ++k)
            if (distance * units[k] == before.length) ++fitting[k];
    }
    for (std::size_t k = 0; k < units.size(); ++k)
        if (fitting[k] >= fewest && 2 * fitting[k] > within) {
            // By which the addresses have been multiplied already.
            const std::uint32_t unit = units[k] * addressUnit_;
            return unit > units.back() ? 1 : unit;
        }
    return 1;
}

void ParsedData::preferFirst() {
    if (!isAscending_) visible_ = visibleParts(true);
}

Buffer::MemoryBuffer ParsedData::imageOf(const Buffer::Area& range) const {
    Buffer::MemoryBuffer image = newImage(range.start, range.length);
    const std::vector<Run>& runs = isAscending_ ? runs_ : visible_;
    auto run = std::ranges::partition_point(
        runs, [&range](const Run& earlier) { return earlier.area.end() <= range.start; });
    for (; run != runs.end() && run->area.start < range.end(); ++run)
        image.overlayBytes(bytesOf(*run), run->area.start);
    return image;
}

bool ParsedData::hasOverlaps() const {
    if (isAscending_) return false;
    std::uint64_t visibleBytes = 0;
    for (const Run& part : visible_) visibleBytes += part.area.length;
    return visibleBytes != size_;
}

Buffer::MemoryBuffer ParsedData::getMemory(std::uint64_t startAddress,
                                           std::uint64_t dataLength) const {
    if (dataLength == 0) return {startAddress, 0};
    const Buffer::Area range{startAddress, dataLength};
    if (startAddress < minAddress_) {
        report(Facts::ReadOperation::GetMemory, range);
        return {0, 0};
    }
    return imageOf(range);
}

Buffer::MemoryBuffer ParsedData::takeMemory() {
    const bool isOneRun = runs_.size() == 1 && runs_.front().area.length == dataLength_;
    if (!isOneRun || dataLength_ >= Buffer::MAX_ALLOWED_MEMORY_BUFFER_SIZE)
        return getMemory(minAddress_, dataLength_);
    Buffer::MemoryBuffer image(minAddress_, std::move(bytes_),
                               static_cast<std::size_t>(dataLength_));
    clear();
    return image;
}

void ParsedData::fillMemoryBuffer(Buffer::MemoryBuffer& buffer) const {
    const Buffer::Area range = buffer.getArea();
    if (!span().contains(range))
        report(Facts::ReadOperation::FillMemoryBuffer, range);
    else
        buffer.fillFrom(imageOf(range).viewElements(), range.start);
}

void ParsedData::report(Facts::ReadOperation operation, const Buffer::Area& requested) const {
    reportRange(reader_, operation, requested, span(), getInformation());
}

Buffer::AreaList ParsedData::getDataAreas() const {
    Buffer::AreaList areas;
    if (isAscending_) {
        for (const Run& run : runs_) areas.push_back(run.area);
        return areas;
    }
    const auto add = [&areas](const Buffer::Area& area) {
        if (!areas.empty() && areas.back().end() == area.start)
            areas.back().length += area.length;
        else
            areas.push_back(area);
    };
    if (!hasOverlaps()) {
        for (const Run& part : visible_) add(part.area);
        return areas;
    }
    // Between two borders of runs, all addresses are given equally often.
    std::vector<std::pair<std::uint64_t, int>> borders;
    borders.reserve(2 * runs_.size());
    for (const Run& run : runs_) {
        borders.emplace_back(run.area.start, 1);
        borders.emplace_back(run.area.end(), -1);
    }
    std::ranges::sort(borders);
    std::uint64_t from = 0;
    int times = 0;
    for (const auto& [address, change] : borders) {
        if (times == 1 && address != from) add({from, address - from});
        for (std::uint64_t at = from; times > 1 && at < address; ++at)
            for (int i = 0; i < times; ++i) add({at, 1});
        from = address;
        times += change;
    }
    return areas;
}

std::string ParsedData::getInformation() const {
    return informationAbout(reader_, dataLength_, minAddress_, maxAddress_);
}

}  // namespace Io::Import
