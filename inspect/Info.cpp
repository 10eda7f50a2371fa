#include "inspect/Info.hpp"

#include <algorithm>
#include <future>
#include <system_error>
#include <utility>

#include "inspect/Json.hpp"
#include "io/InFile.hpp"
#include "io/import/elf/ElfFile.hpp"
#include "platform/Paths.hpp"
#include "util/Hex.hpp"

namespace Inspect {

namespace {

using Buffer::Area;
using Buffer::AreaList;

std::string right(const std::string& text, std::size_t width) {
    return std::string(width - std::min(width, text.size()), ' ') + text;
}

std::string left(std::string text, std::size_t width) {
    text.resize(std::max(width, text.size()), ' ');
    return text;
}

/// One row of the table of areas, whose widths fit 32-bit addresses.
std::string row(const std::string& number, const std::string& start, const std::string& last,
                const std::string& bytes, const std::string& size, const std::string& gap,
                const std::string& crc) {
    return right(number, 6) + "  " + left(start, 10) + "  " + left(last, 10) + right(bytes, 13) +
           right(size, 12) + right(gap, 12) + "  " + left(crc, 8) + "  ";
}

/// The digits of a digest that fit into `room` columns.
std::string cut(const std::string& digits, std::size_t room) {
    constexpr std::size_t fewest = 8;
    if (room >= digits.size()) return digits;
    return digits.substr(0, std::max(fewest, room < 2 ? 0 : room - 2)) + "..";
}

std::string recordsText(const Records& records) {
    std::string text = grouped(records.total()) + ": ";
    for (const Records::Kind& kind : records.kinds)
        text +=
            (&kind == &records.kinds.front() ? "" : ", ") + grouped(kind.count) + " " + kind.name;
    text += "\n";
    if (records.dataLengths.empty()) return text;
    // Most files have one length and a rest; a file of many lengths shows the frequent ones.
    std::vector<std::pair<unsigned, std::uint64_t>> lengths(records.dataLengths.begin(),
                                                            records.dataLengths.end());
    std::ranges::stable_sort(lengths, std::ranges::greater{},
                             &decltype(lengths)::value_type::second);
    constexpr std::size_t mostShown = 6;
    text += "  lengths   ";
    for (std::size_t i = 0; i < lengths.size() && i < mostShown; ++i)
        text += (i == 0 ? "" : ", ") + countText(lengths[i].second, "record") + " of " +
                countText(lengths[i].first, "byte");
    if (lengths.size() > mostShown)
        text += ", and " + countText(lengths.size() - mostShown, "other length");
    return text + "\n";
}

std::string remarkText(const Remark& remark) {
    std::string text = "  " + remark.severity + "   ";
    text.resize(12, ' ');
    if (remark.line != 0) text += "line " + std::to_string(remark.line) + ": ";
    text += remark.text;
    if (!remark.name.empty()) text += " [" + remark.name + "]";
    return text + "\n";
}

std::string wordFor(Io::Import::ElfSymbol::Kind kind) {
    switch (kind) {
        case Io::Import::ElfSymbol::Kind::Data:
            return "data";
        case Io::Import::ElfSymbol::Kind::Function:
            return "function";
        case Io::Import::ElfSymbol::Kind::Other:
            break;
    }
    return "label";
}

/// Adds what only an ELF file has.
void addLoaded(Info& info, bool withSymbols) {
    const Io::Import::ElfFile file(info.path);
    for (const auto& segment : file.segments())
        info.segments.push_back({{segment.address, segment.length}, "", ""});
    if (!withSymbols) return;
    for (const auto& symbol : file.symbols())
        info.symbols.push_back({{symbol.address, symbol.size}, wordFor(symbol.kind), symbol.name});
    std::ranges::stable_sort(info.symbols, {},
                             [](const Loaded& symbol) { return symbol.area.start; });
}

std::string segmentsText(const std::vector<Loaded>& segments) {
    std::string text;
    for (const Loaded& segment : segments)
        text += "  segment   " + rangeText(segment.area) + ", " +
                countText(segment.area.length, "byte") + "\n";
    return text;
}

std::string symbolsText(const std::vector<Loaded>& symbols) {
    if (symbols.empty()) return "";
    std::string text = "\n  symbol         bytes  kind      name\n";
    for (const Loaded& symbol : symbols)
        text += "  " + left(addressText(symbol.area.start), 10) +
                right(grouped(symbol.area.length), 10) + "  " + left(symbol.kind, 8) + "  " +
                symbol.name + "\n";
    return text;
}

}  // namespace

Info infoAbout(const std::string& path, bool withSymbols) {
    Info info;
    info.path = path;
    info.format = formatOf(path);
    info.fileSize = Io::openInput(path).size();
    // Both take about as long, and a machine has more than one core. What is no regular file is
    // only in the host of this thread.
    const bool isRegular = Platform::isRegularFile(path);
    auto records =
        std::async(isRegular ? std::launch::async | std::launch::deferred : std::launch::deferred,
                   &countRecords, path, info.format);
    const auto image = openImage(path);
    info.records = records.get();
    if (!image) return info;
    if (info.format == "ELF") addLoaded(info, withSymbols);
    info.startAddress = image->startAddress;
    const AreaList areas = image->areas();
    for (const Area& area : areas) info.areas.push_back({area, digestOf(image->parts, area)});
    info.digest = areas.size() == 1 ? info.areas.front().digest : digestOf(image->parts, areas);
    return info;
}

std::string textOf(const Info& info, std::size_t width) {
    std::string text =
        info.path + ": " + info.format + ", " + countText(info.fileSize, "byte") + "\n";
    if (info.records.total() != 0) text += "  records   " + recordsText(info.records);
    if (info.startAddress) text += "  start     " + addressText(*info.startAddress) + "\n";
    text += segmentsText(info.segments);
    std::uint64_t bytes = 0;
    for (const AreaInfo& area : info.areas) bytes += area.area.length;
    text += "  data      " + countText(bytes, "byte");
    constexpr std::uint64_t shortest = 1024;
    if (bytes >= shortest) text += " (" + sizeText(bytes) + ")";
    if (!info.areas.empty())
        text += " in " + countText(info.areas.size(), "area") + ", " +
                rangeText({info.areas.front().area.start,
                           info.areas.back().area.end() - info.areas.front().area.start});
    text += "\n";
    if (!info.areas.empty())
        text += "  CRC-32    " + Util::hexWord(info.digest.crc32) + "\n  SHA-256   " +
                info.digest.sha256 + "\n";
    for (const Remark& remark : info.remarks) text += remarkText(remark);
    if (info.areas.empty()) return text + symbolsText(info.symbols);
    text +=
        "\n" + row("area", "start", "last", "bytes", "size", "gap before", "CRC-32") + "SHA-256\n";
    std::uint64_t end = info.areas.front().area.start;
    for (std::size_t i = 0; i < info.areas.size(); ++i) {
        const auto& [area, digest] = info.areas[i];
        const std::string line =
            row(std::to_string(i + 1), addressText(area.start), addressText(area.end() - 1),
                grouped(area.length), sizeText(area.length),
                area.start == end ? "" : sizeText(area.start - end), Util::hexWord(digest.crc32));
        const std::size_t room = width > line.size() ? width - line.size() : 0;
        text += line + (width == 0 ? digest.sha256 : cut(digest.sha256, room)) + "\n";
        end = area.end();
    }
    return text + symbolsText(info.symbols);
}

std::string jsonOf(const std::vector<Info>& files) {
    Json list = Json::array();
    for (const Info& info : files) {
        Json json{{"file", info.path}, {"format", info.format}, {"size", info.fileSize}};
        for (const Records::Kind& kind : info.records.kinds)
            json["records"][kind.name] = kind.count;
        for (const auto& [length, count] : info.records.dataLengths)
            json["recordLengths"][std::to_string(length)] = count;
        if (info.startAddress) json["startAddress"] = addressText(*info.startAddress);
        std::uint64_t bytes = 0;
        AreaList gaps;
        Json areas = Json::array();
        for (const auto& [area, digest] : info.areas) {
            if (bytes != 0) gaps.back().length = area.start - gaps.back().start;
            gaps.push_back({area.end(), 0});
            bytes += area.length;
            Json entry = toJson(area);
            entry["crc32"] = Util::hexWord(digest.crc32);
            entry["sha256"] = digest.sha256;
            areas.push_back(std::move(entry));
        }
        if (!gaps.empty()) gaps.pop_back();
        json["bytes"] = bytes;
        if (bytes != 0) {
            json["crc32"] = Util::hexWord(info.digest.crc32);
            json["sha256"] = info.digest.sha256;
        }
        json["areas"] = std::move(areas);
        json["gaps"] = toJson(gaps);
        for (const Loaded& segment : info.segments)
            json["segments"].push_back(toJson(segment.area));
        for (const Loaded& symbol : info.symbols) {
            Json entry = toJson(symbol.area);
            entry["kind"] = symbol.kind;
            entry["name"] = symbol.name;
            json["symbols"].push_back(std::move(entry));
        }
        json["remarks"] = Json::array();
        for (const Remark& remark : info.remarks) json["remarks"].push_back(toJson(remark));
        list.push_back(std::move(json));
    }
    return dump(list);
}

}  // namespace Inspect
