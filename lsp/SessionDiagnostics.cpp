#include <algorithm>
#include <string>
#include <utility>

#include "editor/Script.hpp"
#include "lsp/Session.hpp"

/// Diagnostics, and what mends them.
namespace Lsp {

namespace {

/// The numbers of the protocol.
int numberOf(Strict::Severity severity) {
    if (severity == Strict::Severity::Error) return 1;
    return severity == Strict::Severity::Warning ? 2 : 3;
}

/// A diagnostic that is about the text as a whole.
Json wholeDiagnostic(const std::string& text, int severity) {
    const Json start{{"line", 0}, {"character", 0}};
    return {{"range", {{"start", start}, {"end", start}}},
            {"severity", severity},
            {"source", "tessaron"},
            {"message", text}};
}

/// Where the script's own file has a place, or the line that includes the file that has it.
std::optional<Editor::TextSpan> spanIn(const Editor::Script& script,
                                       const std::optional<Strict::Place>& place) {
    if (!place) return std::nullopt;
    const auto found = script.placeOf(*place);
    if (found && found->file == 0) return found->where;
    for (const Strict::IncludingLine& line : place->includedFrom) {
        if (line.file != script.name()) continue;
        Strict::Place including;
        including.file = line.file;
        including.line = line.line;
        if (const auto outer = script.placeOf(including)) return outer->where;
    }
    return std::nullopt;
}

}  // namespace

Json Session::related(const Document& document, const Editor::Script& script,
                      const Strict::Diagnostic& diagnostic, Locations& locations) const {
    Json list = Json::array();
    const auto add = [&](const std::string& text, const Strict::Place& place) {
        const auto found = script.placeOf(place);
        if (!found) return;
        if (found->file == 0)
            list.push_back({{"location",
                             {{"uri", document.uri()},
                              {"range", rangeOf(document.text(), found->where, encoding_)}}},
                            {"message", text}});
        else
            list.push_back({{"location", locations.of(*found)}, {"message", text}});
    };
    if (diagnostic.place && diagnostic.place->file != script.name())
        add(diagnostic.text, *diagnostic.place);
    for (const Strict::Note& note : diagnostic.notes)
        if (note.place) add(note.text, *note.place);
    return list;
}

Json Session::diagnosticOf(const Document& document, const Editor::Script& script,
                           const Strict::Judged& finding, Locations& locations) const {
    const Strict::Diagnostic& diagnostic = finding.diagnostic;
    std::string text = diagnostic.text;
    if (!diagnostic.hint.empty()) text += "\n" + diagnostic.hint;
    for (const Strict::Note& note : diagnostic.notes)
        if (!note.place) text += "\n" + note.text;
    Json json = wholeDiagnostic(text, numberOf(finding.severity));
    if (const auto span = spanIn(script, diagnostic.place))
        json["range"] = rangeOf(document.text(), *span, encoding_);
    if (diagnostic.kind) json["code"] = nameOf(*diagnostic.kind);
    if (Json list = related(document, script, diagnostic, locations); !list.empty())
        json["relatedInformation"] = std::move(list);
    return json;
}

Json Session::diagnosticsOf(Document& document) {
    Json list = Json::array();
    if (document.isTooLong) {
        list.push_back(wholeDiagnostic(
            "the script is too long to be checked while it is written: tessaron check checks it",
            numberOf(Strict::Severity::Warning)));
        return list;
    }
    const auto script = documents_.script(document);
    Locations locations(documents_, *script, encoding_);
    for (const Strict::Judged& finding : script->findings().shown())
        list.push_back(diagnosticOf(document, *script, finding, locations));
    if (const std::string rest = script->findings().rest(); !rest.empty())
        list.push_back(wholeDiagnostic(rest, numberOf(Strict::Severity::Note)));
    return list;
}

Json Session::codeActions(const Json& params) {
    const auto script = scriptOf(params);
    const Document& document = documentOf(params);
    const Editor::Text& text = document.text();
    const std::size_t from =
        text.readOf(text.offsetOf(positionIn(params, "/range/start"), encoding_));
    const std::size_t to = text.readOf(text.offsetOf(positionIn(params, "/range/end"), encoding_));
    Locations locations(documents_, *script, encoding_);
    Json actions = Json::array();
    for (const Strict::Judged& finding : script->findings().shown()) {
        const auto& correction = finding.diagnostic.correction;
        const auto& place = finding.diagnostic.place;
        const auto found = correction && place ? script->placeOf(*place) : std::nullopt;
        if (!found || found->file != 0) continue;
        const Editor::TextSpan where{found->where.at, correction->wrong.size()};
        const bool isThere = !correction->wrong.empty() && where.end() <= script->text().size() &&
                             where.in(script->text()) == correction->wrong;
        if (!isThere || where.at > to || where.end() < from) continue;
        for (const std::string& right : correction->right) {
            const Json edit = editOf(text, {where, right}, encoding_);
            actions.push_back(
                {{"title", "Write " + right},
                 {"kind", "quickfix"},
                 {"diagnostics", {diagnosticOf(document, *script, finding, locations)}},
                 {"isPreferred", correction->right.size() == 1},
                 {"edit", {{"changes", {{document.uri(), Json::array({edit})}}}}}});
        }
    }
    return actions;
}

}  // namespace Lsp
