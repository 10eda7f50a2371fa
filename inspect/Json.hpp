#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "inspect/Image.hpp"
#include "inspect/Info.hpp"
#include "inspect/Words.hpp"
#include "util/Printable.hpp"

/// What the JSON outputs have in common. Addresses are texts, "0x08000000", since people compare
/// them; numbers of bytes are numbers.
namespace Inspect {

using Json = nlohmann::ordered_json;

/// Adds a property that the object does not have yet. Its own operators search all properties for
/// the name first, which are as many as a script has variables or lines.
inline void addNew(Json& object, std::string name, Json value) {
    object.get_ref<Json::object_t&>().emplace_back(std::move(name), std::move(value));
}

/// The texts as the properties of an object.
inline Json toJson(const std::map<std::string, std::string>& texts) {
    Json json = Json::object();
    for (const auto& [name, text] : texts) addNew(json, name, text);
    return json;
}

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

/// The value as text. Bytes that are not UTF-8, as a path may have them, are replaced.
///
/// @param indent  blanks for each level of lines; -1 for a single line
inline std::string textOf(const Json& json, int indent) {
    return Util::printableJson(json.dump(indent, ' ', false, Json::error_handler_t::replace));
}

/// The value as the contents of a file.
inline std::string dump(const Json& json, int indent = 2) {
    return textOf(json, indent) + "\n";
}

}  // namespace Inspect
