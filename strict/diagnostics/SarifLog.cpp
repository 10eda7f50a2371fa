#include "strict/diagnostics/SarifLog.hpp"

#include <map>
#include <string_view>

#include "inspect/Json.hpp"
#include "platform/Version.hpp"
#include "strict/diagnostics/Notes.hpp"
#include "strict/diagnostics/Uri.hpp"
#include "util/Printable.hpp"

namespace Strict {

namespace {

using Inspect::Json;

Json fileAt(const std::string& path) {
    return {{"uri", uriOf(path)}};
}

/// @param length  in characters
Json regionOf(const Place& place, std::size_t length) {
    Json region{{"startLine", place.line}};
    if (place.column != 0) {
        region["startColumn"] = place.column;
        region["endColumn"] = place.column + length;
    }
    return region;
}

Json locationOf(const Place& place) {
    Json physical{{"artifactLocation", fileAt(place.file)}};
    if (place.line != 0) physical["region"] = regionOf(place, place.caretLength);
    return {{"physicalLocation", physical}};
}

/// The text, and the notes that have no place.
std::string messageOf(const Diagnostic& diagnostic) {
    std::string text = adviceOf(diagnostic);
    for (const Note& note : diagnostic.notes)
        if (!note.place) text += "\nnote: " + note.text;
    return text;
}

/// What an editor can do about a diagnostic whose place is the word that is wrong.
Json fixesOf(const Diagnostic& diagnostic) {
    Json fixes = Json::array();
    if (!diagnostic.correction || !diagnostic.place || diagnostic.place->column == 0) return fixes;
    const Place& place = *diagnostic.place;
    const std::string& wrong = diagnostic.correction->wrong;
    const std::string_view before = Util::firstCharacters(place.excerpt, place.caret);
    // A variable may have put the word there.
    if (!std::string_view(place.excerpt).substr(before.size()).starts_with(wrong)) return fixes;
    const Json deleted = regionOf(place, Util::characters(wrong));
    for (const std::string& right : diagnostic.correction->right) {
        Json replacement{{"deletedRegion", deleted}, {"insertedContent", {{"text", right}}}};
        Json change{{"artifactLocation", fileAt(place.file)},
                    {"replacements", Json::array({replacement})}};
        fixes.push_back({{"description", {{"text", "write " + right}}},
                         {"artifactChanges", Json::array({change})}});
    }
    return fixes;
}

/// The rules that have results, each with its place in the list.
class Rules {
public:
    std::size_t placeOf(Kind kind) {
        const auto [known, isNew] = places_.try_emplace(kind, places_.size());
        if (isNew) {
            const KindRow& row = rowOf(kind);
            list_.push_back({{"id", row.name},
                             {"shortDescription", {{"text", row.meaning}}},
                             {"defaultConfiguration", {{"level", wordFor(row.severity)}}}});
        }
        return known->second;
    }

    const Json& list() const { return list_; }

private:
    std::map<Kind, std::size_t> places_;
    Json list_ = Json::array();
};

Json resultOf(const Judged& judged, const std::string& subject, Rules& rules) {
    const Diagnostic& diagnostic = judged.diagnostic;
    Json result{{"ruleId", nameOf(*diagnostic.kind)},
                {"ruleIndex", rules.placeOf(*diagnostic.kind)},
                {"level", wordFor(judged.severity)},
                {"message", {{"text", messageOf(diagnostic)}}}};
    const Place whole{.file = subject};
    if (diagnostic.place || !subject.empty())
        result["locations"] = Json::array({locationOf(diagnostic.place.value_or(whole))});
    for (const Note& note : allNotesOf(diagnostic)) {
        if (!note.place) continue;
        Json location = locationOf(*note.place);
        location["message"] = {{"text", note.text}};
        result["relatedLocations"].push_back(location);
    }
    if (Json fixes = fixesOf(diagnostic); !fixes.empty()) result["fixes"] = std::move(fixes);
    return result;
}

Json notificationOf(const Diagnostic& note) {
    Json notification{{"level", "note"}, {"message", {{"text", messageOf(note)}}}};
    if (note.place) notification["locations"] = Json::array({locationOf(*note.place)});
    return notification;
}

}  // namespace

std::string sarifLogOf(std::span<const Judged> diagnostics, const std::string& subject,
                       int exitCode) {
    Rules rules;
    Json results = Json::array();
    Json invocation{{"executionSuccessful", exitCode == 0}, {"exitCode", exitCode}};
    for (const Judged& judged : diagnostics) {
        if (judged.diagnostic.kind)
            results.push_back(resultOf(judged, subject, rules));
        else
            invocation["toolExecutionNotifications"].push_back(notificationOf(judged.diagnostic));
    }
    Json driver{
        {"name", "tessaron"}, {"version", Platform::versionText()}, {"rules", rules.list()}};
    Json run{{"tool", {{"driver", driver}}},
             {"columnKind", "unicodeCodePoints"},
             {"invocations", Json::array({invocation})},
             {"results", results}};
    return Inspect::dump({{"$schema",
                           "https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/"
                           "sarif-schema-2.1.0.json"},
                          {"version", "2.1.0"},
                          {"runs", Json::array({run})}});
}

}  // namespace Strict
