#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "editor/Text.hpp"

namespace Lsp {

using Json = nlohmann::json;

/// The error codes of JSON-RPC and of the protocol that the server answers with.
enum class ErrorCode : int {
    ParseError = -32700,
    InvalidRequest = -32600,
    MethodNotFound = -32601,
    InvalidParams = -32602,
    InternalError = -32603,
    NotInitialized = -32002,
    RequestFailed = -32803
};

/// A request that is answered with an error.
struct Refusal {
    ErrorCode code;
    std::string text;
};

/// A message as it is sent. Bytes that are not UTF-8 are replaced.
std::string textOf(const Json& message);

/// The member of an object at a path "/a/b", or null if it is not there.
inline const Json& memberOf(const Json& object, const char* path) {
    static const Json none;
    const Json::json_pointer pointer(path);
    return object.is_object() && object.contains(pointer) ? object.at(pointer) : none;
}

/// The text at a path; `otherwise` if there is none.
inline std::string textAt(const Json& object, const char* path, std::string otherwise = {}) {
    const Json& member = memberOf(object, path);
    return member.is_string() ? member.get<std::string>() : otherwise;
}

/// A position of the protocol.
/// @throws Refusal  if it is none
Editor::Position positionIn(const Json& object, const char* path);

/// A part of a text as a range of the protocol.
///
/// @param where  in the text as it is read
Json rangeOf(const Editor::Text& text, Editor::TextSpan where, Editor::Encoding encoding);

/// An edit of a text as it is read, as one of the protocol.
Json editOf(const Editor::Text& text, const Editor::Edit& edit, Editor::Encoding encoding);

}  // namespace Lsp
