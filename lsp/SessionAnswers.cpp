#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <utility>

#include "editor/Completion.hpp"
#include "editor/Format.hpp"
#include "editor/Hover.hpp"
#include "editor/Structure.hpp"
#include "lsp/Legend.hpp"
#include "lsp/Session.hpp"

/// The answers to questions about a script.
namespace Lsp {

namespace {

/// The numbers of the protocol for `Editor::CompletionKind`.
constexpr std::array completionKinds{14, 14, 5, 12, 3, 6, 21, 25, 15, 17, 19};

/// The same for `Editor::OutlineEntry::Kind`: constant, module, object, number, key, key, file.
constexpr std::array outlineKinds{14, 2, 19, 16, 20, 20, 1};

/// Markdown without its signs.
std::string plain(std::string text) {
    std::erase_if(text, [](char c) { return c == '`' || c == '*'; });
    return text;
}

}  // namespace

Json Session::complete(const Json& params) {
    const Place place = placeOf(params);
    const auto found = Editor::completionsAt(*place.script, *place.mentions, place.offset);
    const Json range = rangeOf(place.document->text(), found.where, encoding_);
    Json items = Json::array();
    for (const Editor::Completion& one : found.list) {
        constexpr std::size_t digits = 5;
        std::string order = std::to_string(items.size());
        order.insert(0, digits - std::min(digits, order.size()), '0');
        Json item{{"label", one.label},
                  {"kind", completionKinds.at(static_cast<std::size_t>(one.kind))},
                  {"sortText", order},
                  {"filterText", one.label},
                  {"textEdit", {{"range", range}, {"newText", one.text}}}};
        if (!one.detail.empty()) item["detail"] = one.detail;
        items.push_back(std::move(item));
    }
    return {{"isIncomplete", false}, {"items", std::move(items)}};
}

Json Session::hover(const Json& params) {
    const Place place = placeOf(params);
    const auto found = Editor::hoverAt(*place.script, *place.mentions, place.offset);
    if (!found) return nullptr;
    return {{"contents",
             {{"kind", takesMarkdown_ ? "markdown" : "plaintext"},
              {"value", takesMarkdown_ ? found->text : plain(found->text)}}},
            {"range", rangeOf(place.document->text(), found->where, encoding_)}};
}

std::vector<Session::Found> Session::mentionsAt(const Place& place, bool isRename) {
    std::vector<Found> all;
    std::set<Json> known;
    for (const Documents::Part& part : documents_.partsOf(*place.document)) {
        const Editor::Mention* const here = part.mentions->at(part.file, place.offset);
        if (here == nullptr) continue;
        Locations locations(documents_, *part.script, encoding_);
        for (const Editor::Mention& one :
             isRename ? part.mentions->toRename(*here) : part.mentions->ofSame(*here)) {
            Json location = locations.of(one.where);
            if (known.insert(location).second) all.push_back({std::move(location), one.isMaking});
        }
    }
    return all;
}

Json Session::definition(const Json& params) {
    for (const Found& found : mentionsAt(placeOf(params)))
        if (found.isMaking) return found.location;
    return nullptr;
}

Json Session::references(const Json& params) {
    const bool withMaking = memberOf(params, "/context/includeDeclaration") != false;
    Json list = Json::array();
    for (const Found& found : mentionsAt(placeOf(params)))
        if (withMaking || !found.isMaking) list.push_back(found.location);
    return list;
}

Json Session::highlights(const Json& params) {
    constexpr int reading = 2;
    constexpr int writing = 3;
    const Place place = placeOf(params);
    Json list = Json::array();
    for (const Found& found : mentionsAt(place))
        if (found.location["uri"] == place.document->uri())
            list.push_back(
                {{"range", found.location["range"]}, {"kind", found.isMaking ? writing : reading}});
    return list;
}

Json Session::prepareRename(const Json& params) {
    const Place place = placeOf(params);
    const Editor::Mention* const here = place.mentions->at(0, place.offset);
    if (here == nullptr || !here->isWritten) return nullptr;
    return {{"range", rangeOf(place.document->text(), here->where.where, encoding_)},
            {"placeholder", here->name}};
}

Json Session::rename(const Json& params) {
    const Place place = placeOf(params);
    const std::string name = textAt(params, "/newName");
    if (place.mentions->at(0, place.offset) == nullptr)
        throw Refusal{ErrorCode::RequestFailed, "there is nothing here that has a name"};
    for (const Documents::Part& part : documents_.partsOf(*place.document)) {
        const Editor::Mention* const here = part.mentions->at(part.file, place.offset);
        if (here == nullptr) continue;
        const std::string obstacle =
            here->name == name ? "" : obstacleToRename(*part.script, *part.mentions, *here, name);
        if (!obstacle.empty()) throw Refusal{ErrorCode::RequestFailed, obstacle};
    }
    Json changes = Json::object();
    for (const Found& found : mentionsAt(place, true)) {
        Json& edits = changes[found.location["uri"].get<std::string>()];
        edits.push_back({{"range", found.location["range"]}, {"newText", name}});
    }
    return {{"changes", std::move(changes)}};
}

Json Session::outline(const Json& params) {
    const auto script = scriptOf(params);
    const Document& document = documentOf(params);
    Json list = Json::array();
    for (const Editor::OutlineEntry& one : Editor::outlineOf(*script)) {
        Json entry{{"name", one.name},
                   {"kind", outlineKinds.at(static_cast<std::size_t>(one.kind))}};
        const Json range = rangeOf(document.text(), one.whole, encoding_);
        if (takesTree_) {
            entry["range"] = range;
            entry["selectionRange"] = rangeOf(document.text(), one.where, encoding_);
        } else {
            entry["location"] = {{"uri", document.uri()}, {"range", range}};
        }
        list.push_back(std::move(entry));
    }
    return list;
}

Json Session::folds(const Json& params) {
    const auto script = scriptOf(params);
    const Document& document = documentOf(params);
    Json list = Json::array();
    for (const Editor::Fold& one : Editor::foldsOf(*script)) {
        const Json range = rangeOf(document.text(), one.where, encoding_);
        Json fold{{"startLine", range["start"]["line"]}, {"endLine", range["end"]["line"]}};
        if (one.isRemark) fold["kind"] = "comment";
        list.push_back(std::move(fold));
    }
    return list;
}

Json Session::tokens(const Json& params) {
    const auto script = scriptOf(params);
    Document& document = documentOf(params);
    std::vector<std::size_t> data;
    Editor::Position last;
    for (const Editor::Token& token : Editor::tokensOf(*script, *documents_.mentions(document))) {
        const Editor::TextSpan raw = document.text().rawOf(token.where);
        const Editor::Position begin = document.text().positionOf(raw.at, encoding_);
        const Editor::Position end = document.text().positionOf(raw.end(), encoding_);
        if (end.line != begin.line || end.column <= begin.column) continue;
        const std::size_t column =
            begin.line == last.line ? begin.column - last.column : begin.column;
        data.insert(data.end(), {begin.line - last.line, column, end.column - begin.column,
                                 numberOf(token.kind), token.isMaking ? 1U : 0U});
        last = begin;
    }
    return {{"data", data}};
}

Json Session::format(const Json& params) {
    const auto script = scriptOf(params);
    const Document& document = documentOf(params);
    const Editor::Formatting formatting =
        Editor::format(script->name(), script->text(), script->settings(), script->edited());
    Json edits = Json::array();
    for (const Editor::Edit& edit : formatting.edits)
        edits.push_back(editOf(document.text(), edit, encoding_));
    return edits;
}

}  // namespace Lsp
