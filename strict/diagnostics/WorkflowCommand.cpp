#include "strict/diagnostics/WorkflowCommand.hpp"

#include <string_view>
#include <utility>

#include "strict/diagnostics/Notes.hpp"
#include "util/Hex.hpp"
#include "util/Printable.hpp"

namespace Strict {

namespace {

/// The text with `%` and the two digits of its code for each of the characters.
std::string escaped(std::string_view text, std::string_view characters) {
    std::string result;
    for (const char c : text) {
        if (characters.find(c) == std::string_view::npos)
            result += c;
        else
            result += '%' + Util::hexByte(static_cast<unsigned char>(c));
    }
    return result;
}

}  // namespace

std::string workflowCommandOf(const Diagnostic& diagnostic, Severity severity) {
    std::vector<std::pair<const char*, std::string>> properties;
    if (diagnostic.place) {
        const Place& place = *diagnostic.place;
        properties.emplace_back("file", place.file);
        if (place.line != 0) properties.emplace_back("line", std::to_string(place.line));
        if (place.column != 0) properties.emplace_back("col", std::to_string(place.column));
    }
    if (diagnostic.kind) properties.emplace_back("title", nameOf(*diagnostic.kind));
    std::string command = "::";
    command += severity == Severity::Note ? "notice" : wordFor(severity);
    char before = ' ';
    for (const auto& [name, value] : properties) {
        command += before;
        command += name;
        command += '=';
        command += escaped(Util::printable(value), "%\r\n:,");
        before = ',';
    }
    std::string message = Util::printable(adviceOf(diagnostic));
    for (const Note& note : allNotesOf(diagnostic)) {
        const std::string place = note.place ? prefixOf(*note.place) : "";
        message += '\n';
        message += Util::printable(place + "note: " + note.text);
    }
    command += "::";
    command += escaped(message, "%\r\n");
    command += '\n';
    return command;
}

}  // namespace Strict
