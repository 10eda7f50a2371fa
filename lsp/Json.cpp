#include "lsp/Json.hpp"

namespace Lsp {

namespace {

Json toJson(Editor::Position position) {
    return {{"line", position.line}, {"character", position.column}};
}

Json rangeOfRaw(const Editor::Text& text, Editor::TextSpan where, Editor::Encoding encoding) {
    return {{"start", toJson(text.positionOf(where.at, encoding))},
            {"end", toJson(text.positionOf(where.end(), encoding))}};
}

}  // namespace

std::string textOf(const Json& message) {
    return message.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Editor::Position positionIn(const Json& object, const char* path) {
    const Json& position = memberOf(object, path);
    const Json& line = memberOf(position, "/line");
    const Json& column = memberOf(position, "/character");
    if (!line.is_number_unsigned() || !column.is_number_unsigned())
        throw Refusal{ErrorCode::InvalidParams, std::string("there is no position at ") + path};
    return {line.get<std::size_t>(), column.get<std::size_t>()};
}

Json rangeOf(const Editor::Text& text, Editor::TextSpan where, Editor::Encoding encoding) {
    return rangeOfRaw(text, text.rawOf(where), encoding);
}

Json editOf(const Editor::Text& text, const Editor::Edit& edit, Editor::Encoding encoding) {
    const Editor::Edit raw = text.rawOf(edit);
    return {{"range", rangeOfRaw(text, raw.where, encoding)}, {"newText", raw.text}};
}

}  // namespace Lsp
