#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "strict/diagnostics/Diagnostic.hpp"

namespace Tests {

/// Keeps diagnostics as lines: "line:column kind: text (hint)", and "+ line:column text" for each
/// note. What has no place begins with its kind.
class TakenDiagnostics final : public Strict::DiagnosticSink {
public:
    void take(const Strict::Diagnostic& diagnostic) override {
        std::string line = textOf(diagnostic.place);
        if (diagnostic.kind) line.append(Strict::nameOf(*diagnostic.kind)).append(": ");
        line += diagnostic.text;
        if (!diagnostic.hint.empty()) line.append(" (").append(diagnostic.hint).append(")");
        lines.push_back(std::move(line));
        for (const Strict::Note& note : diagnostic.notes)
            lines.push_back("+ " + textOf(note.place) + note.text);
    }

    void countMore(Strict::Kind kind, std::uint64_t count) override {
        lines.push_back(std::to_string(count) + " more of " + Strict::nameOf(kind));
    }

    std::vector<std::string> lines;

private:
    static std::string textOf(const std::optional<Strict::Place>& place) {
        if (!place) return "";
        return std::to_string(place->line) + ":" + std::to_string(place->column) + " ";
    }
};

}  // namespace Tests
