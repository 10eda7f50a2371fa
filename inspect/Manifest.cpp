#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "inspect/CrcWords.hpp"
#include "inspect/Digest.hpp"
#include "inspect/Gaps.hpp"
#include "inspect/JsonText.hpp"
#include "inspect/RunRecord.hpp"
#include "inspect/Words.hpp"
#include "util/Hex.hpp"

namespace Inspect {

namespace {

/// Adds the line of a statement, and the file that has it if that is not the script itself.
void addLine(JsonText& json, std::size_t line, const std::string& script) {
    json.addNumber("line", line);
    if (!script.empty()) json.addText("script", script);
}

void addFile(JsonText& json, const FileRecord& file) {
    json.addNumber("size", file.size);
    json.addText("sha256", file.sha256);
}

void addInput(JsonText& json, const FileRecord& file) {
    json.openObject();
    json.addText("path", file.path);
    addFile(json, file);
    if (file.isIncluded) json.addFlag("included", true);
    if (!file.format.empty()) {
        json.addText("format", file.format);
        json.addAreas("areas", file.areas);
    }
    json.close();
}

void addOutput(JsonText& json, const FileRecord& file) {
    json.openObject();
    json.addText("path", file.path);
    json.addText("format", file.format);
    addFile(json, file);
    json.openList("images");
    for (const std::string& name : file.images) json.addText(name);
    json.close();
    addLine(json, file.line, file.script);
    if (file.startAddress) json.addText("startAddress", addressText(*file.startAddress));
    json.close();
}

const char* wordFor(MapKind kind) {
    constexpr std::array words{"gap", "filler", "data", "value"};
    return words[static_cast<std::size_t>(kind)];
}

void addRange(JsonText& json, const OriginRange& range, const RangeOrigin& origin) {
    json.openObject();
    json.addArea(range.area);
    json.addText("kind", wordFor(origin.kind));
    addLine(json, origin.line, origin.script);
    if (!origin.file.empty()) json.addText("file", origin.file);
    if (range.firstLine != 0) {
        json.openList("fileLines");
        json.addNumber(range.firstLine);
        json.addNumber(range.lastLine);
        json.close();
    }
    json.close();
}

void addImage(JsonText& json, const ImageRecord& record) {
    json.openObject();
    json.addText("name", record.name);
    json.addArea(record.image->getArea());
    json.addText("crc32", Util::hexWord(record.digest.crc32));
    json.addText("sha256", record.digest.sha256);
    if (record.startAddress) json.addText("startAddress", addressText(*record.startAddress));
    json.openList("ranges");
    for (const OriginRange& range : record.ranges) addRange(json, range, record.originOf(range));
    json.close();
    json.close();
}

void addAlgorithm(JsonText& json, const Algorithm& algorithm) {
    json.openObject("algorithm");
    json.addText("name", algorithm.name);
    if (!algorithm.meaning.empty()) json.addText("meaning", algorithm.meaning);
    if (algorithm.crc) {
        const Util::Crc::CrcParameters& crc = *algorithm.crc;
        json.addNumber("width", static_cast<std::uint64_t>(crc.width));
        json.addText("poly", crcNumberText(crc.polynomial, crc.width));
        json.addText("init", crcNumberText(crc.initial, crc.width));
        json.addFlag("refin", crc.isInputReflected);
        json.addFlag("refout", crc.isOutputReflected);
        json.addText("xorout", crcNumberText(crc.finalXor, crc.width));
        if (algorithm.alignment != Util::Crc::CrcAlignment::Right)
            json.addText("alignment", alignmentWord(algorithm.alignment));
    }
    json.close();
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

void addPlace(JsonText& json, const ValueRecord::Place& place) {
    json.openObject();
    json.addText("image", place.image);
    json.addArea(place.area);
    if (!place.byteOrder.empty()) json.addText("byteOrder", place.byteOrder);
    addLine(json, place.line, place.script);
    json.close();
}

void addValue(JsonText& json, const ValueRecord& value) {
    json.openObject();
    json.addText("name", value.name);
    json.addText("kind", value.kind);
    json.addText("value", numberDigits(value));
    json.addText("bytes", value.bytes);
    addLine(json, value.line, value.script);
    addAlgorithm(json, value.algorithm);
    if (!value.publicKey.empty()) json.addText("publicKey", value.publicKey);
    if (value.wordSize != 1) json.addNumber("wordSize", value.wordSize);
    json.openList("covers");
    for (const ValueRecord::Source& source : value.sources) {
        json.openObject();
        json.addText("image", source.image);
        json.addAreas("areas", source.areas);
        json.close();
    }
    json.close();
    json.openList("places");
    for (const ValueRecord::Place& place : value.places) addPlace(json, place);
    json.close();
    json.close();
}

template <class Entry>
void addList(JsonText& json, const char* name, const std::vector<Entry>& entries,
             void (*addEntry)(JsonText&, const Entry&)) {
    json.openList(name);
    for (const Entry& entry : entries) addEntry(json, entry);
    json.close();
}

}  // namespace

Digest digestOf(const ImageRecord& record) {
    Buffer::AreaList areas;
    for (const OriginRange& range : record.ranges) areas.push_back(range.area);
    return record.image->getDataLength() - byteCount(areas) > widestGaps
               ? digestOf(*record.image, areas)
               : digestOf(*record.image);
}

void writeManifest(const RunRecord& record, const TakeText& take) {
    JsonText json(take);
    json.addNumber("version", 1);
    json.openObject("script");
    json.addText("path", record.scriptPath);
    json.addText("sha256", record.scriptSha256);
    json.close();
    json.openObject("variables");
    for (const auto& [name, value] : record.variables) json.addText(name, value);
    json.close();
    addList(json, "inputs", record.inputs, &addInput);
    addList(json, "images", record.images, &addImage);
    addList(json, "values", record.values, &addValue);
    addList(json, "outputs", record.outputs, &addOutput);
    json.finish();
}

std::string manifestOf(const RunRecord& record) {
    std::string text;
    writeManifest(record, [&text](std::string_view piece) { text += piece; });
    return text;
}

MapRow rowOf(const ImageRecord& image) {
    MapRow row{image.name, {}};
    for (const OriginRange& range : image.ranges)
        row.ranges.push_back({range.area, image.originOf(range).kind});
    return row;
}

}  // namespace Inspect
