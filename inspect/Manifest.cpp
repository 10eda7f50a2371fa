#include <array>
#include <utility>

#include "inspect/CrcWords.hpp"
#include "inspect/Digest.hpp"
#include "inspect/Gaps.hpp"
#include "inspect/Json.hpp"
#include "inspect/RunRecord.hpp"
#include "inspect/Words.hpp"
#include "util/Hex.hpp"

namespace Inspect {

namespace {

/// Adds the line of a statement, and the file that has it if that is not the script itself.
void addLine(Json& json, std::size_t line, const std::string& script) {
    json["line"] = line;
    if (!script.empty()) json["script"] = script;
}

Json inputJson(const FileRecord& file) {
    Json json{{"path", file.path}, {"size", file.size}, {"sha256", file.sha256}};
    if (file.isIncluded) json["included"] = true;
    if (!file.format.empty()) {
        json["format"] = file.format;
        json["areas"] = toJson(file.areas);
    }
    return json;
}

Json outputJson(const FileRecord& file) {
    Json json{{"path", file.path},
              {"format", file.format},
              {"size", file.size},
              {"sha256", file.sha256},
              {"images", file.images}};
    addLine(json, file.line, file.script);
    if (file.startAddress) json["startAddress"] = addressText(*file.startAddress);
    return json;
}

const char* wordFor(MapKind kind) {
    constexpr std::array words{"gap", "filler", "data", "value"};
    return words[static_cast<std::size_t>(kind)];
}

Json rangeJson(const OriginRange& range) {
    Json json = toJson(range.area);
    json["kind"] = wordFor(range.kind);
    addLine(json, range.line, range.script);
    if (!range.file.empty()) json["file"] = range.file;
    if (range.firstLine != 0) json["fileLines"] = {range.firstLine, range.lastLine};
    return json;
}

/// The digests of the whole image, or of what has a byte or a filler if the gaps are too wide: they
/// would take longer than all the rest of a run.
Digest imageDigest(const ImageRecord& record) {
    Buffer::AreaList areas;
    for (const OriginRange& range : record.ranges) areas.push_back(range.area);
    return record.image->getDataLength() - byteCount(areas) > widestGaps
               ? digestOf(*record.image, areas)
               : digestOf(*record.image);
}

Json imageJson(const ImageRecord& record) {
    const Buffer::Area area = record.image->getArea();
    Json json{{"name", record.name}};
    json.update(toJson(area));
    const Digest digest = imageDigest(record);
    json["crc32"] = Util::hexWord(digest.crc32);
    json["sha256"] = digest.sha256;
    if (record.startAddress) json["startAddress"] = addressText(*record.startAddress);
    json["ranges"] = Json::array();
    for (const OriginRange& range : record.ranges) json["ranges"].push_back(rangeJson(range));
    return json;
}

Json algorithmJson(const Algorithm& algorithm) {
    Json json{{"name", algorithm.name}};
    if (!algorithm.meaning.empty()) json["meaning"] = algorithm.meaning;
    if (!algorithm.crc) return json;
    const Util::Crc::CrcParameters& crc = *algorithm.crc;
    json["width"] = crc.width;
    json["poly"] = crcNumberText(crc.polynomial, crc.width);
    json["init"] = crcNumberText(crc.initial, crc.width);
    json["refin"] = crc.isInputReflected;
    json["refout"] = crc.isOutputReflected;
    json["xorout"] = crcNumberText(crc.finalXor, crc.width);
    if (algorithm.alignment != Util::Crc::CrcAlignment::Right)
        json["alignment"] = alignmentWord(algorithm.alignment);
    return json;
}

/// A CRC with its highest byte first.
std::string numberDigits(const ValueRecord& value) {
    constexpr std::size_t digitsOfByte = 2;
    if (value.kind != "crc") return value.bytes;
    std::string digits;
    for (std::size_t at = value.bytes.size(); at != 0; at -= digitsOfByte)
        digits += value.bytes.substr(at - digitsOfByte, digitsOfByte);
    return digits;
}

Json valueJson(const ValueRecord& value) {
    Json json{{"name", value.name},
              {"kind", value.kind},
              {"value", numberDigits(value)},
              {"bytes", value.bytes}};
    addLine(json, value.line, value.script);
    json["algorithm"] = algorithmJson(value.algorithm);
    if (!value.publicKey.empty()) json["publicKey"] = value.publicKey;
    if (value.wordSize != 1) json["wordSize"] = value.wordSize;
    json["covers"] = Json::array();
    for (const ValueRecord::Source& source : value.sources)
        json["covers"].push_back({{"image", source.image}, {"areas", toJson(source.areas)}});
    json["places"] = Json::array();
    for (const ValueRecord::Place& place : value.places) {
        Json entry{{"image", place.image}};
        entry.update(toJson(place.area));
        if (!place.byteOrder.empty()) entry["byteOrder"] = place.byteOrder;
        addLine(entry, place.line, place.script);
        json["places"].push_back(std::move(entry));
    }
    return json;
}

template <class Entries, class Convert>
Json listOf(const Entries& entries, Convert convert) {
    Json list = Json::array();
    for (const auto& entry : entries) list.push_back(convert(entry));
    return list;
}

}  // namespace

std::string manifestOf(const RunRecord& record) {
    Json json{{"version", 1},
              {"script", {{"path", record.scriptPath}, {"sha256", record.scriptSha256}}}};
    json["variables"] = Json::object();
    for (const auto& [name, value] : record.variables) json["variables"][name] = value;
    json["inputs"] = listOf(record.inputs, inputJson);
    json["images"] = listOf(record.images, imageJson);
    json["values"] = listOf(record.values, valueJson);
    json["outputs"] = listOf(record.outputs, outputJson);
    return dump(json);
}

MapRow rowOf(const ImageRecord& image) {
    MapRow row{image.name, {}};
    for (const OriginRange& range : image.ranges) row.ranges.push_back({range.area, range.kind});
    return row;
}

}  // namespace Inspect
