#include "strict/diagnostics/Printer.hpp"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "inspect/Json.hpp"
#include "strict/diagnostics/Notes.hpp"
#include "strict/diagnostics/SarifLog.hpp"
#include "strict/diagnostics/WorkflowCommand.hpp"
#include "util/Printable.hpp"

namespace Strict {

namespace {

using Inspect::Json;

constexpr const char* bold = "\033[1m";
constexpr const char* red = "\033[1;31m";
constexpr const char* magenta = "\033[1;35m";
constexpr const char* cyan = "\033[1;36m";
constexpr const char* green = "\033[1;32m";
constexpr const char* plain = "\033[0m";

const char* colorOf(Severity severity) {
    if (severity == Severity::Error) return red;
    return severity == Severity::Warning ? magenta : cyan;
}

std::string lineOf(const Json& json) {
    return Inspect::dump(json, -1);
}

/// A place as an object of JSON.
Json toJson(const Place& place) {
    Json json{{"file", place.file}};
    if (place.line != 0) json["line"] = place.line;
    if (place.column != 0) {
        json["column"] = place.column;
        json["length"] = place.caretLength;
    }
    if (!place.excerpt.empty()) json["source"] = place.excerpt;
    return json;
}

}  // namespace

void Printer::take(const Diagnostic& diagnostic) {
    if (other_ != nullptr) other_->take(diagnostic);
    const Severity severity = policy_->severityOf(diagnostic);
    errors_ += severity == Severity::Error ? 1U : 0U;
    if (isShown(severity) && allowance_.admits(diagnostic)) print(diagnostic, severity);
}

void Printer::countMore(Kind kind, std::uint64_t count) {
    if (other_ != nullptr) other_->countMore(kind, count);
    const Severity severity = policy_->severityOf(kind);
    errors_ += severity == Severity::Error ? count : 0U;
    if (isShown(severity)) allowance_.countMore(kind, count);
}

bool Printer::isShown(Severity severity) const {
    return severity != Severity::Ignored && !(severity == Severity::Warning && isQuiet_);
}

void Printer::finish(int exitCode) {
    const std::string rest = allowance_.restText();
    if (!rest.empty() && format_ == DiagnosticFormat::Json) {
        Json json{{"severity", wordFor(Severity::Note)}, {"text", rest}};
        for (const auto& [kind, count] : allowance_.rest())
            json["notShown"][kind ? nameOf(*kind) : "note"] = count;
        *out_ << lineOf(json) << std::flush;
    } else if (!rest.empty()) {
        print({std::nullopt, rest}, Severity::Note);
    }
    if (format_ == DiagnosticFormat::Sarif)
        *out_ << sarifLogOf(judged_, subject_, exitCode) << std::flush;
}

std::vector<Kind> Printer::printedKinds() const {
    std::vector<Kind> kinds;
    for (const auto& [kind, count] : allowance_.shown())
        if (kind) kinds.push_back(*kind);
    return kinds;
}

void Printer::print(const Diagnostic& diagnostic, Severity severity) {
    if (format_ == DiagnosticFormat::Sarif) {
        judged_.push_back({diagnostic, severity});
        return;
    }
    // In one piece, since standard error has no buffer of its own.
    *out_ << lineFor(diagnostic, severity) << std::flush;
}

std::string Printer::lineFor(const Diagnostic& diagnostic, Severity severity) const {
    if (format_ == DiagnosticFormat::Json) return jsonOf(diagnostic, severity);
    return format_ == DiagnosticFormat::Github ? workflowCommandOf(diagnostic, severity)
                                               : textOf(diagnostic, severity);
}

std::string Printer::textOf(const Place& place, const std::string& hint) const {
    if (place.line == 0 || (place.excerpt.empty() && hint.empty()))
        return hint.empty() ? "" : "    " + Util::printable(hint) + "\n";
    constexpr std::size_t narrowest = 4;
    const std::string number = std::to_string(place.line);
    const std::size_t width = std::max(number.size(), narrowest) + 1;
    std::string text(width - number.size(), ' ');
    text += number;
    text += " | ";
    text += Util::printableColumns(place.excerpt);
    text += '\n';
    if (place.column == 0 && hint.empty()) return text;
    text.append(width, ' ');
    if (place.column == 0) {
        text += "   ";
    } else {
        text += " | ";
        text.append(place.caret, ' ');
        text += color(green);
        text += '^';
        text.append(place.caretLength - 1, '~');
        if (!hint.empty()) text += ' ';
    }
    text += Util::printable(hint);
    text += place.column == 0 ? "" : color(plain);
    text += '\n';
    return text;
}

std::string Printer::textOf(const std::vector<IncludingLine>& lines) const {
    std::string text;
    for (const IncludingLine& line : lines)
        text += color(bold) + std::string("    ") + color(cyan) + "note: " + color(plain) +
                Util::printable(wordsFor(line)) + "\n";
    return text;
}

std::string Printer::textOf(const Diagnostic& diagnostic, Severity severity) const {
    std::string text = color(bold);
    text += diagnostic.place ? Util::printable(prefixOf(*diagnostic.place)) : "tessaron: ";
    text += color(colorOf(severity));
    text += wordFor(severity);
    text += ": ";
    text += color(plain);
    text += color(bold) + Util::printable(diagnostic.text) + color(plain);
    if (diagnostic.kind) text.append(" [").append(nameOf(*diagnostic.kind)).append("]");
    text += '\n';
    if (diagnostic.place)
        text += textOf(*diagnostic.place, diagnostic.hint);
    else if (!diagnostic.hint.empty())
        text += "    " + Util::printable(diagnostic.hint) + "\n";
    text += textOf(linesOf(diagnostic.place));
    for (const Note& note : diagnostic.notes) {
        text += color(bold);
        text += note.place ? Util::printable(prefixOf(*note.place)) : "    ";
        text += color(cyan);
        text += "note: ";
        text += color(plain) + Util::printable(note.text) + "\n";
        if (note.place) text += textOf(*note.place, {});
        if (linesOf(note.place) != linesOf(diagnostic.place)) text += textOf(linesOf(note.place));
    }
    return text;
}

std::string Printer::jsonOf(const Diagnostic& diagnostic, Severity severity) {
    Json json{{"severity", wordFor(severity)}};
    if (diagnostic.kind) json["name"] = nameOf(*diagnostic.kind);
    json["text"] = diagnostic.text;
    if (diagnostic.place) json.update(toJson(*diagnostic.place));
    if (!diagnostic.hint.empty()) json["hint"] = diagnostic.hint;
    for (const Note& note : allNotesOf(diagnostic)) {
        Json entry{{"text", note.text}};
        if (note.place) entry.update(toJson(*note.place));
        json["notes"].push_back(entry);
    }
    return lineOf(json);
}

}  // namespace Strict
