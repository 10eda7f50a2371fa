#include "parser/commands/Conventions.hpp"

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <numeric>

#include "util/Hex.hpp"
#include "util/Report.hpp"

namespace Parser::WrapperLib {

namespace {

/// Shared end of the lookups: the entry's value, or nullptr after the report.
template <class Map>
auto* findOrReport(Map& map, const std::string& name, std::string_view kind) {
    const auto entry = map.find(name);
    if (entry != map.end()) return &entry->second;
    Util::reportLine("Error: ", kind, " Variable ", name, " not found !");
    Util::reportLine("Operation aborted.");
    return static_cast<decltype(&entry->second)>(nullptr);
}

std::string trimmedWithout(std::string text, std::string_view unwanted) {
    std::erase_if(text, [unwanted](char c) { return unwanted.find(c) != std::string_view::npos; });
    boost::algorithm::trim(text);
    return text;
}

}  // namespace

Buffer::MemoryBuffer* findBuffer(CmdContext& context, const std::string& name) {
    return findOrReport(context.buffers, name, "Buffer");
}

const ByteList* findCrc(const CmdContext& context, const std::string& name) {
    return findOrReport(context.crcs, name, "Crc");
}

const ByteList* findHash(const CmdContext& context, const std::string& name) {
    return findOrReport(context.hashes, name, "Hash");
}

bool resolveSymbol(const CmdContext& context, const std::string& name, std::string& text) {
    const auto crc = context.crcs.find(name);
    const bool isCrc = crc != context.crcs.end();
    const ByteList* const value =
        isCrc ? &crc->second : findOrReport(context.hashes, name, "Symbol Ref");
    if (value == nullptr) return false;
    std::string digits = isCrc ? "0x" : "";
    Util::appendHex(digits, *value);
    boost::algorithm::replace_all(text, name, digits);
    return true;
}

GatheredBytes::GatheredBytes(const std::vector<std::span<const Buffer::MemoryElement>>& ranges)
    : block_(std::accumulate(
          ranges.begin(), ranges.end(), std::size_t{0},
          [](std::size_t size, const auto& range) { return size + range.size(); })) {
    auto* out = reinterpret_cast<std::uint8_t*>(block_.data());
    for (const auto& range : ranges) {
        Buffer::effectiveBytes(range, out);
        out += range.size();
    }
}

std::span<const std::uint8_t> GatheredBytes::view() const {
    return {reinterpret_cast<const std::uint8_t*>(block_.data()), block_.size()};
}

std::optional<GatheredBytes> gatherBytes(CmdContext& context, const std::vector<std::string>& names,
                                         const AreaList& areas) {
    std::vector<std::span<const Buffer::MemoryElement>> ranges;
    for (const std::string& name : names) {
        const Buffer::MemoryBuffer* const buffer = findBuffer(context, name);
        if (buffer == nullptr) return std::nullopt;
        if (areas.empty()) ranges.push_back(buffer->viewElements());
        for (const Area& area : areas) ranges.push_back(buffer->viewRange(area.start, area.length));
    }
    return GatheredBytes(ranges);
}

std::string cleanedPath(std::string text) {
    return trimmedWithout(std::move(text), "{}\"'");
}

std::string cleanedText(std::string text) {
    return trimmedWithout(std::move(text), "{}");
}

void reportExhausted(std::string_view what, std::string_view name, std::string_view done) {
    Util::reportLine("Error: ", what, " ", name, " could not be ", done, " !");
    Util::reportLine("Operation aborted. Maybe stack overflow, buffer too big");
}

}  // namespace Parser::WrapperLib
