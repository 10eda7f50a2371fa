#include "inspect/Info.hpp"

#include <algorithm>
#include <array>
#include <future>
#include <string_view>
#include <utility>

#include "inspect/Json.hpp"
#include "inspect/Words.hpp"
#include "io/formats/AnyFile.hpp"
#include "io/import/Malformed.hpp"
#include "util/Hex.hpp"
#include "util/Printable.hpp"

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

/// The digits of a digest that fit into `room` columns.
std::string cut(const std::string& digits, std::size_t room) {
    return room >= digits.size() ? digits : digits.substr(0, room - 2) + "..";
}

/// The items after `line`, with commas, in lines of up to `width` columns, unless it is 0.
std::string listText(std::string line, const std::vector<std::string>& items, std::size_t width) {
    const std::string indent(11, ' ');
    std::string text;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const std::string item = items[i] + (i + 1 == items.size() ? "" : ",");
        if (i != 0 && width != 0 && line.size() + 1 + item.size() > width) {
            text += line + "\n";
            line = indent;
        }
        line += " " + item;
    }
    return text + line + "\n";
}

std::string recordsText(const RecordCounts& records, std::size_t width) {
    std::vector<std::string> kinds;
    for (const RecordCounts::Kind& kind : records.kinds)
        kinds.push_back(grouped(kind.count) + " " + kind.name);
    std::string text = listText("  records   " + grouped(records.total()) + ":", kinds, width);
    if (records.dataLengths.empty()) return text;
    // Most files have one length and a rest; a file of many lengths shows the frequent ones.
    std::vector<std::pair<std::size_t, std::uint64_t>> lengths(records.dataLengths.begin(),
                                                               records.dataLengths.end());
    std::ranges::stable_sort(lengths, std::ranges::greater{},
                             &decltype(lengths)::value_type::second);
    constexpr std::size_t mostShown = 6;
    std::vector<std::string> shown;
    for (std::size_t i = 0; i < lengths.size() && i < mostShown; ++i)
        shown.push_back(countText(lengths[i].second, "record") + " of " +
                        countText(lengths[i].first, "byte"));
    if (lengths.size() > mostShown)
        shown.push_back("and " + countText(lengths.size() - mostShown, "other length"));
    return text + listText("  lengths  ", shown, width);
}

std::string remarkText(const Remark& remark) {
    std::string text = "  " + remark.severity + "   ";
    text.resize(12, ' ');
    if (remark.line != 0) text += "line " + std::to_string(remark.line) + ": ";
    text += Util::printable(remark.text);
    if (!remark.name.empty()) text += " [" + remark.name + "]";
    if (!remark.hint.empty()) text += "\n" + std::string(12, ' ') + Util::printable(remark.hint);
    return text + "\n";
}

/// One row of the table of areas: number, start, last, bytes, size, gap, CRC-32 and SHA-256.
using Row = std::array<std::string, 8>;

/// Calls `visit` with the heads and with a row for each area. A million rows would take half a
/// gigabyte, so they are made one by one.
template <class Visit>
void forEachRow(const std::vector<AreaInfo>& areas, Visit visit) {
    visit(Row{"area", "start", "last", "bytes", "size", "gap before", "CRC-32", "SHA-256"});
    std::uint64_t end = areas.front().area.start;
    std::size_t number = 0;
    for (const auto& [area, digest] : areas) {
        visit(Row{std::to_string(++number), addressText(area.start), addressText(area.end() - 1),
                  grouped(area.length), sizeText(area.length),
                  area.start == end ? "" : sizeText(area.start - end), Util::hexWord(digest.crc32),
                  digest.sha256});
        end = area.end();
    }
}

/// The table, each column as wide as its widest text. The last one takes what is left of `width`,
/// and is left out if that is too little.
std::string areasText(const std::vector<AreaInfo>& areas, std::size_t width) {
    constexpr std::array isNumber{true, false, false, true, true, true, false};
    constexpr std::size_t fewestDigits = 8;
    std::array<std::size_t, isNumber.size()> widths{};
    forEachRow(areas, [&widths](const Row& row) {
        for (std::size_t i = 0; i < widths.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    });
    std::size_t used = 0;
    for (const std::size_t columns : widths) used += columns + 2;
    const std::size_t room = width == 0     ? areas.back().digest.sha256.size()
                             : width > used ? width - used
                                            : 0;
    std::string text;
    forEachRow(areas, [&](const Row& row) {
        for (std::size_t i = 0; i < widths.size(); ++i) {
            text += i == 0 ? "" : "  ";
            text += isNumber[i] ? right(row[i], widths[i]) : left(row[i], widths[i]);
        }
        if (room >= fewestDigits) text += "  " + cut(row.back(), room);
        text += '\n';
    });
    return text;
}

/// What the file has in it, in a word.
std::string dataText(const Info& info) {
    if (!info.isRead) return "not read";
    std::uint64_t bytes = 0;
    for (const AreaInfo& area : info.areas) bytes += area.area.length;
    std::string text = countText(bytes, "byte");
    constexpr std::uint64_t shortest = 1024;
    if (bytes >= shortest) text += " (" + sizeText(bytes) + ")";
    if (!info.areas.empty())
        text += " in " + countText(info.areas.size(), "area") + ", " +
                rangeText({info.areas.front().area.start,
                           info.areas.back().area.end() - info.areas.front().area.start});
    return text;
}

/// The value, which identifies the data unless it is the one of all data with its own CRC-32.
std::string checksumText(std::uint32_t crc) {
    const std::string digits = Util::hexWord(crc);
    return crc == crc32OfSelfChecked
               ? digits + ", as of any data that ends with its own CRC-32: see SHA-256"
               : digits;
}

std::string wordFor(Io::Import::Symbol::Kind kind) {
    switch (kind) {
        case Io::Import::Symbol::Kind::Data:
            return "data";
        case Io::Import::Symbol::Kind::Function:
            return "function";
        case Io::Import::Symbol::Kind::Other:
            break;
    }
    return "label";
}

/// Without blanks and zeros at both ends: fixed fields are filled up with them.
std::string trimmed(const std::string& text) {
    constexpr std::string_view filling(" \0", 2);
    const std::size_t begin = text.find_first_not_of(filling);
    if (begin == std::string::npos) return {};
    return text.substr(begin, text.find_last_not_of(filling) + 1 - begin);
}

/// Adds what only some formats have. Damaged symbols, which were reported, are left out.
void addLoaded(Info& info, const Io::Import::TessaronImportApi& file, bool withSymbols) {
    info.families = file.getFamilies();
    info.devices = file.getDevices();
    info.header = trimmed(file.getHeader());
    for (const Area& area : file.getSegments()) info.segments.push_back({area, "", ""});
    if (!withSymbols) return;
    try {
        for (const Io::Import::Symbol& symbol : file.getSymbols())
            info.symbols.push_back(
                {{symbol.address, symbol.size}, wordFor(symbol.kind), symbol.name});
    } catch (const Io::Import::Malformed&) {
        return;
    }
    std::ranges::stable_sort(info.symbols, {},
                             [](const Loaded& symbol) { return symbol.area.start; });
}

/// The devices that the file is for, and what it has for each of several families.
std::string devicesText(const Info& info) {
    std::string text;
    for (const Io::Import::DeviceFamily& family : info.families) {
        text += "  device    " + family.name;
        if (info.families.size() > 1)
            text += ", " + countText(family.blocks, "block") + ", " + rangeText(family.range);
        text += "\n";
    }
    for (const std::string& device : info.devices)
        text += "  device    " + Util::printable(device) + "\n";
    return text;
}

std::string segmentsText(const std::vector<Loaded>& segments) {
    std::string text;
    for (const Loaded& segment : segments)
        text += "  segment   " + rangeText(segment.area) + ", " +
                countText(segment.area.length, "byte") + "\n";
    return text;
}

/// What each area begins and ends with.
std::string namesText(const Info& info) {
    std::string text;
    std::size_t number = 0;
    for (const auto& [area, digest] : info.areas) {
        ++number;
        const std::string names = info.names.of(area);
        if (!names.empty())
            text += right(std::to_string(number), 4) + "  " + Util::printable(names) + "\n";
    }
    return text.empty() ? "" : "\narea  names\n" + text;
}

std::string symbolsText(const std::vector<Loaded>& symbols) {
    if (symbols.empty()) return "";
    std::string text = "\n  symbol         bytes  kind      name\n";
    for (const Loaded& symbol : symbols)
        text += "  " + left(addressText(symbol.area.start), 10) +
                right(grouped(symbol.area.length), 10) + "  " + left(symbol.kind, 8) + "  " +
                Util::printable(symbol.name) + "\n";
    return text;
}

}  // namespace

Info infoAbout(const std::string& path, std::optional<Facts::InputFormat> format, bool withSymbols,
               const Io::Import::ReadOptions& options) {
    Info info;
    info.path = path;
    RecordCounter counter;
    const Io::Formats::AnyFile file = Io::Formats::openAny(path, format, &counter, options);
    info.format = file.format;
    info.fileSize = file.size;
    if (info.format) info.records = counter.result(*info.format);
    if (file.reader == nullptr) return info;
    info.isRead = true;
    addLoaded(info, *file.reader, withSymbols);
    const Image image = imageOf(path, *file.reader);
    info.startAddress = image.startAddress;
    const AreaList areas = image.areas();
    // The digest of all areas takes as long as those of each, and is computed beside them.
    std::future<Digest> whole;
    if (areas.size() != 1)
        whole = std::async(std::launch::async | std::launch::deferred,
                           [&image, &areas] { return digestOf(image.data, areas); });
    for (const Area& area : areas)
        info.areas.push_back({area, digestOf(image.data, AreaList{area})});
    info.digest = whole.valid() ? whole.get() : info.areas.front().digest;
    return info;
}

std::string textOf(const Info& info, std::size_t width) {
    if (info.script)
        return Util::printable(info.path) + ": script, " + countText(info.script->lines, "line") +
               "\n" + textOf(*info.script);
    std::string text = Util::printable(info.path) + ": " + formatText(info.format) + ", " +
                       countText(info.fileSize, "byte") + "\n";
    if (info.records.total() != 0) text += recordsText(info.records, width);
    if (info.startAddress) text += "  start     " + addressText(*info.startAddress) + "\n";
    if (!info.header.empty()) text += "  header    " + Util::printable(info.header) + "\n";
    text += devicesText(info);
    text += segmentsText(info.segments);
    text += "  data      " + dataText(info) + "\n";
    if (!info.areas.empty())
        text += "  CRC-32    " + checksumText(info.digest.crc32) + "\n  SHA-256   " +
                info.digest.sha256 + "\n";
    for (const Remark& remark : info.remarks) text += remarkText(remark);
    if (!info.areas.empty()) text += "\n" + areasText(info.areas, width) + namesText(info);
    return text + symbolsText(info.symbols);
}

namespace {

Json scriptJson(const Info& info) {
    const ScriptOutline& script = *info.script;
    Json json{{"file", info.path},
              {"format", "script"},
              {"lines", script.lines},
              {"parameters", Json::array()}};
    for (const ScriptOutline::Parameter& parameter : script.parameters) {
        Json entry{{"name", parameter.name}};
        if (parameter.value) entry["default"] = *parameter.value;
        if (!parameter.remark.empty()) entry["remark"] = parameter.remark;
        entry["line"] = parameter.line;
        json["parameters"].push_back(std::move(entry));
    }
    json["includes"] = script.includes;
    json["inputs"] = script.inputs;
    json["images"] = script.images;
    json["outputs"] = script.outputs;
    return json;
}

}  // namespace

std::string jsonOf(const std::vector<Info>& files) {
    Json list = Json::array();
    for (const Info& info : files) {
        if (info.script) {
            list.push_back(scriptJson(info));
            continue;
        }
        Json json{
            {"file", info.path}, {"format", formatText(info.format)}, {"size", info.fileSize}};
        for (const RecordCounts::Kind& kind : info.records.kinds)
            json["records"][kind.name] = kind.count;
        for (const auto& [length, count] : info.records.dataLengths)
            json["recordLengths"][std::to_string(length)] = count;
        if (info.startAddress) json["startAddress"] = addressText(*info.startAddress);
        if (!info.header.empty()) json["header"] = info.header;
        for (const Io::Import::DeviceFamily& family : info.families) {
            json["devices"].push_back(family.name);
            Json entry = toJson(family.range);
            entry["name"] = family.name;
            entry["blocks"] = family.blocks;
            json["families"].push_back(std::move(entry));
        }
        for (const std::string& device : info.devices) json["devices"].push_back(device);
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
            if (const std::string names = info.names.of(area); !names.empty())
                entry["names"] = names;
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
