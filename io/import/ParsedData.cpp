#include "io/import/ParsedData.hpp"

#include <algorithm>
#include <cstring>
#include <map>
#include <utility>

#include "facts/Listener.hpp"
#include "util/Report.hpp"

namespace Io::Import {

std::string informationAbout(std::string_view readerName, std::uint64_t dataLength,
                             std::uint64_t minAddress, std::uint64_t maxAddress) {
    return "Information about current " + std::string(readerName) + " Object\n" +
           "dataLength: (int)" + std::to_string(dataLength) + "\n" + "minAddress: (int)" +
           std::to_string(minAddress) + "\n" + "maxAddress: (int)" + std::to_string(maxAddress) +
           "\n";
}

Buffer::MemoryBuffer newImage(std::uint64_t startAddress, std::uint64_t dataLength) {
    Buffer::MemoryBuffer image(startAddress, dataLength);
    if (image.getDataLength() != dataLength)
        Facts::report(Facts::FillTooLong{startAddress, dataLength, startAddress});
    return image;
}

void reportRange(std::string_view readerName, std::string_view operation,
                 const Buffer::Area& requested, std::string_view outcome, std::uint64_t minAddress,
                 std::uint64_t behindMax, const std::string& information) {
    Util::reportLine(readerName, "(", operation,
                     "-Operation). The requested extraction range from int address [",
                     requested.start, " to ", requested.start + requested.length,
                     "] was out of range. ", outcome);
    Util::reportLine("  Possible max range could be from int [", minAddress, " to ", behindMax,
                     "].");
    std::cout << information << std::flush;
}

ParsedData::ParsedData(std::string_view readerName, std::size_t capacity)
    : readerName_(readerName), bytes_(capacity) {}

void ParsedData::append(std::uint64_t address, std::span<const std::uint8_t> bytes) {
    if (bytes.empty()) return;
    const std::uint64_t last = address + bytes.size() - 1;
    minAddress_ = runs_.empty() ? address : std::min(minAddress_, address);
    maxAddress_ = std::max(maxAddress_, last);
    std::memcpy(bytes_.data() + size_, bytes.data(), bytes.size());
    if (!runs_.empty() && runs_.back().address + runs_.back().length == address) {
        runs_.back().length += bytes.size();
    } else {
        isAscending_ =
            isAscending_ && (runs_.empty() || address > runs_.back().address + runs_.back().length);
        runs_.push_back({address, size_, bytes.size()});
    }
    size_ += bytes.size();
}

void ParsedData::clear() {
    runs_.clear();
    isAscending_ = true;
    size_ = 0;
    minAddress_ = 0;
    maxAddress_ = 0;
}

void ParsedData::finish() {
    dataLength_ = empty() ? 0 : maxAddress_ - minAddress_ + 1;
    if (!isAscending_) visibleRuns_ = withoutHidden();
}

/// A range of addresses can be looked up in it, however the file is ordered. Where runs overlap,
/// from the last one to the first each shows what none behind it in the file covers.
std::vector<ParsedData::Run> ParsedData::withoutHidden() const {
    std::vector<Run> visible = runs_;
    std::ranges::sort(visible, {}, &Run::address);
    const auto overlaps = [](const Run& run, const Run& next) {
        return run.address + run.length > next.address;
    };
    if (std::ranges::adjacent_find(visible, overlaps) == visible.end()) return visible;
    visible.clear();
    std::map<std::uint64_t, std::uint64_t> covered;  // start and end of ranges that do not touch
    for (auto run = runs_.rbegin(); run != runs_.rend(); ++run) {
        const std::uint64_t runEnd = run->address + run->length;
        std::uint64_t at = run->address;
        std::uint64_t begin = at;
        std::uint64_t end = runEnd;
        auto next = covered.upper_bound(at);
        if (next != covered.begin() && std::prev(next)->second >= at) {
            begin = std::prev(next)->first;
            at = std::prev(next)->second;
            end = std::max(end, at);
        }
        for (;;) {
            const bool isLast = next == covered.end() || next->first > runEnd;
            const std::uint64_t gapEnd = isLast ? runEnd : next->first;
            if (at < gapEnd)
                visible.push_back({at, run->offset + (at - run->address), gapEnd - at});
            if (isLast) break;
            at = std::max(at, next->second);
            end = std::max(end, at);
            next = covered.erase(next);
        }
        covered[begin] = end;
    }
    std::ranges::sort(visible, {}, &Run::address);
    return visible;
}

Buffer::MemoryBuffer ParsedData::imageOf(std::uint64_t startAddress,
                                         std::uint64_t dataLength) const {
    Buffer::MemoryBuffer image = newImage(startAddress, dataLength);
    const std::vector<Run>& runs = isAscending_ ? runs_ : visibleRuns_;
    auto run = std::ranges::partition_point(runs, [startAddress](const Run& earlier) {
        return earlier.address + earlier.length <= startAddress;
    });
    const auto* const first = reinterpret_cast<const std::uint8_t*>(bytes_.data());
    for (; run != runs.end() && run->address < startAddress + dataLength; ++run)
        image.overlayBytes({first + run->offset, run->length}, run->address);
    return image;
}

Buffer::MemoryBuffer ParsedData::getMemory(std::uint64_t startAddress,
                                           std::uint64_t dataLength) const {
    if (dataLength == 0) return {startAddress, 0};
    if (startAddress < minAddress_) {
        report("getMemory", startAddress, dataLength, "Empty buffer was returned.");
        return {0, 0};
    }
    return imageOf(startAddress, dataLength);
}

Buffer::MemoryBuffer ParsedData::takeMemory() {
    const bool isOneRun = runs_.size() == 1 && runs_.front().length == dataLength_;
    if (!isOneRun || dataLength_ >= Buffer::MAX_ALLOWED_MEMORY_BUFFER_SIZE)
        return getMemory(minAddress_, dataLength_);
    Buffer::MemoryBuffer image(minAddress_, std::move(bytes_),
                               static_cast<std::size_t>(dataLength_));
    clear();
    finish();
    return image;
}

void ParsedData::fillMemoryBuffer(Buffer::MemoryBuffer& buffer) const {
    const std::uint64_t start = buffer.getStartAddress();
    const std::uint64_t length = buffer.getDataLength();
    if (start < minAddress_ || start + length > maxAddress_ + 1) {
        report("fillMemoryBuffer", start, length, "Nothing was filled");
        return;
    }
    buffer.fillFrom(imageOf(start, length).viewElements(), start);
}

void ParsedData::report(std::string_view operation, std::uint64_t startAddress,
                        std::uint64_t length, std::string_view outcome) const {
    reportRange(readerName_, operation, {startAddress, length}, outcome, minAddress_,
                maxAddress_ + 1, getInformation());
}

Buffer::AreaList ParsedData::getDataAreas() const {
    Buffer::AreaList areas;
    const auto addByte = [&areas](std::uint64_t address) {
        if (!areas.empty() && areas.back().start + areas.back().length == address)
            ++areas.back().length;
        else
            areas.push_back({address, 1});
    };
    if (isAscending_) {
        for (const Run& run : runs_) areas.push_back({run.address, run.length});
        return areas;
    }
    std::vector<std::uint64_t> addresses;
    addresses.reserve(size_);
    for (const Run& run : runs_)
        for (std::size_t i = 0; i < run.length; ++i) addresses.push_back(run.address + i);
    std::ranges::sort(addresses);
    std::ranges::for_each(addresses, addByte);
    return areas;
}

std::string ParsedData::getInformation() const {
    return informationAbout(readerName_, dataLength_, minAddress_, maxAddress_);
}

}  // namespace Io::Import
