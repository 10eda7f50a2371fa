#include <array>
#include <utility>

#include "inspect/Digest.hpp"
#include "inspect/Json.hpp"
#include "inspect/RunRecord.hpp"
#include "util/Hex.hpp"

namespace Inspect {

namespace {

Json inputJson(const FileRecord& file) {
    Json json{{"path", file.path}, {"size", file.size}, {"sha256", file.sha256}};
    if (!file.format.empty()) {
        json["format"] = file.format;
        json["areas"] = toJson(file.areas);
    }
    return json;
}

Json outputJson(const FileRecord& file) {
    return {{"path", file.path},     {"format", file.format}, {"size", file.size},
            {"sha256", file.sha256}, {"images", file.images}, {"line", file.line}};
}

const char* wordFor(MapKind kind) {
    constexpr std::array words{"gap", "filler", "data", "value"};
    return words[static_cast<std::size_t>(kind)];
}

Json rangeJson(const OriginRange& range) {
    Json json = toJson(range.area);
    json["kind"] = wordFor(range.kind);
    json["line"] = range.line;
    if (!range.file.empty()) json["file"] = range.file;
    if (range.firstLine != 0) json["fileLines"] = {range.firstLine, range.lastLine};
    return json;
}

Json imageJson(const ImageRecord& record) {
    const Buffer::Area area = record.image->getArea();
    Json json{{"name", record.name}};
    json.update(toJson(area));
    json["crc32"] = Util::hexWord(crc32Of(*record.image));
    json["ranges"] = Json::array();
    for (const OriginRange& range : record.ranges) json["ranges"].push_back(rangeJson(range));
    return json;
}

Json valueJson(const ValueRecord& value) {
    Json json{
        {"name", value.name}, {"kind", value.kind}, {"value", value.bytes}, {"line", value.line}};
    json["places"] = Json::array();
    for (const ValueRecord::Place& place : value.places) {
        Json entry{{"image", place.image}};
        entry.update(toJson(place.area));
        entry["line"] = place.line;
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
