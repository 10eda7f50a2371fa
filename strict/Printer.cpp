#include "strict/Printer.hpp"

#include <nlohmann/json.hpp>
#include <string>

namespace Strict {

namespace {

constexpr const char* bold = "\033[1m";
constexpr const char* red = "\033[1;31m";
constexpr const char* magenta = "\033[1;35m";
constexpr const char* cyan = "\033[1;36m";
constexpr const char* green = "\033[1;32m";
constexpr const char* plain = "\033[0m";

/// "file:line:column: ", as far as the place goes.
std::string prefix(const Place& place) {
    std::string text = place.file + ":";
    if (place.line != 0) text += std::to_string(place.line) + ":";
    if (place.column != 0) text += std::to_string(place.column) + ":";
    return text + " ";
}

/// The excerpt with what a terminal would not show as one column made visible.
std::string shown(const std::string& excerpt) {
    std::string text;
    for (const char c : excerpt) {
        const bool isControl = static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
        text += isControl ? ' ' : c;
    }
    return text;
}

/// A place as an object of JSON. Bytes that are no UTF-8 are replaced when it is printed.
nlohmann::ordered_json toJson(const Place& place) {
    nlohmann::ordered_json json{{"file", place.file}};
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
    Diagnostic judged = diagnostic;
    judged.severity = policy_->severityOf(diagnostic.name);
    if (judged.severity == Severity::Ignored) return;
    const bool isError = judged.severity == Severity::Error;
    ++(isError ? errors_ : warnings_);
    if (isQuiet_ && !isError) return;
    if (format_ == DiagnosticFormat::Json)
        printJson(judged);
    else
        printText(judged);
    out_->flush();
}

void Printer::printPlace(const Place& place, const std::string& hint) {
    if (place.line == 0 || (place.excerpt.empty() && hint.empty())) {
        if (!hint.empty()) *out_ << "    " << hint << "\n";
        return;
    }
    const std::string number = std::to_string(place.line);
    const std::string margin(number.size() < 4 ? 4 - number.size() : 0, ' ');
    *out_ << " " << margin << number << " | " << shown(place.excerpt) << "\n";
    if (place.column == 0) {
        if (!hint.empty())
            *out_ << std::string(margin.size() + number.size() + 4, ' ') << hint << "\n";
        return;
    }
    *out_ << " " << std::string(margin.size() + number.size(), ' ') << " | "
          << std::string(place.caret, ' ') << color(green) << "^"
          << std::string(place.caretLength - 1, '~');
    if (!hint.empty()) *out_ << " " << hint;
    *out_ << color(plain) << "\n";
}

void Printer::printText(const Diagnostic& diagnostic) {
    const bool isError = diagnostic.severity == Severity::Error;
    *out_ << color(bold) << (diagnostic.place ? prefix(*diagnostic.place) : "tessaron: ")
          << color(isError ? red : magenta) << (isError ? "error: " : "warning: ") << color(plain)
          << color(bold) << diagnostic.text << color(plain) << " [" << diagnostic.name << "]\n";
    if (diagnostic.place)
        printPlace(*diagnostic.place, diagnostic.hint);
    else if (!diagnostic.hint.empty())
        *out_ << "    " << diagnostic.hint << "\n";
    for (const Note& note : diagnostic.notes) {
        *out_ << color(bold) << (note.place ? prefix(*note.place) : "    ") << color(cyan)
              << "note: " << color(plain) << note.text << "\n";
        if (note.place) printPlace(*note.place, {});
    }
}

void Printer::printJson(const Diagnostic& diagnostic) {
    nlohmann::ordered_json json{
        {"severity", diagnostic.severity == Severity::Error ? "error" : "warning"},
        {"name", diagnostic.name},
        {"text", diagnostic.text}};
    if (diagnostic.place) json.update(toJson(*diagnostic.place));
    if (!diagnostic.hint.empty()) json["hint"] = diagnostic.hint;
    for (const Note& note : diagnostic.notes) {
        nlohmann::ordered_json entry{{"text", note.text}};
        if (note.place) entry.update(toJson(*note.place));
        json["notes"].push_back(entry);
    }
    *out_ << json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << "\n";
}

}  // namespace Strict
