#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "inspect/Image.hpp"
#include "inspect/Info.hpp"
#include "inspect/Words.hpp"
#include "util/Printable.hpp"

/// What the JSON outputs have in common. Addresses are texts, "0x08000000", since people compare
/// them; numbers of bytes are numbers.
namespace Inspect {

using Json = nlohmann::ordered_json;

inline Json toJson(const Buffer::Area& area) {
    return {{"start", addressText(area.start)}, {"length", area.length}};
}

inline Json toJson(const Buffer::AreaList& areas) {
    Json list = Json::array();
    for (const Buffer::Area& area : areas) list.push_back(toJson(area));
    return list;
}

inline Json toJson(const Remark& remark) {
    Json json{{"severity", remark.severity}, {"name", remark.name}, {"text", remark.text}};
    if (remark.name.empty()) json.erase("name");
    if (!remark.file.empty()) json["file"] = remark.file;
    if (remark.line != 0) json["line"] = remark.line;
    if (remark.column != 0) json["column"] = remark.column;
    if (!remark.hint.empty()) json["hint"] = remark.hint;
    return json;
}

/// A value for people, in one line. What has parts is only named: in a file of others they may be
/// nested so deeply that no stack suffices to show them.
template <class Value>
std::string shortText(const Value& value) {
    if (value.is_array()) return "a list";
    if (value.is_object()) return "an object";
    return value.dump(-1, ' ', false, Value::error_handler_t::replace);
}

/// Bytes that are not UTF-8, as a path may have them, are replaced.
inline std::string dump(const Json& json, int indent = 2) {
    return Util::printableJson(json.dump(indent, ' ', false, Json::error_handler_t::replace)) +
           "\n";
}

}  // namespace Inspect
