#include "strict/script/StatementReports.hpp"

#include <algorithm>
#include <utility>

#include "parser/commands/Conventions.hpp"

namespace Strict {

using Parser::Part;
using Parser::Role;

namespace {

/// The part names something that is there already.
bool usesName(Role role) {
    constexpr Parser::Roles others{Role::UsesImage, Role::ChangesImage, Role::UsesValue,
                                   Role::Sections, Role::MeasuresImage};
    return Parser::usesValue.has(role) || others.has(role);
}

}  // namespace

std::string_view StatementReports::trimmed() const {
    const std::string_view text = statement_.text;
    return text.substr(0, text.find_last_not_of(" \t\n\v\f\r") + 1);
}

void StatementReports::reportAt(std::string_view part, Diagnostic diagnostic) {
    // What is empty is the place where it would be.
    if (part.empty()) part = statement_.text.substr(0, 1);
    diagnostic.place = script_->placeOf(part);
    std::vector<Note> notes = script_->variableNotes(part);
    notes.insert(notes.end(), diagnostic.notes.begin(), diagnostic.notes.end());
    diagnostic.notes = std::move(notes);
    sink_->take(diagnostic);
}

void StatementReports::report(Kind kind, std::string text, Parser::Roles roles, std::string hint,
                              std::vector<Note> notes, std::uint64_t count) {
    Diagnostic diagnostic{kind, std::move(text), std::nullopt, std::move(hint), std::move(notes),
                          count};
    if (script_ == nullptr) {
        sink_->take(diagnostic);
        return;
    }
    const Part* part = statement_.last(roles);
    if (part == nullptr) part = &statement_.parts.front();
    reportAt(part->text, std::move(diagnostic));
}

void StatementReports::reportPart(Kind kind, std::string text, const Part& part, std::string hint,
                                  std::vector<Note> notes) {
    reportAt(part.text, {kind, std::move(text), std::nullopt, std::move(hint), std::move(notes)});
}

void StatementReports::reportName(Kind kind, std::string_view name, std::string text,
                                  std::string hint, std::vector<Note> notes) {
    if (script_ == nullptr) {
        report(kind, std::move(text), Parser::Roles(), std::move(hint), std::move(notes));
        return;
    }
    const auto& parts = statement_.parts;
    const auto found = std::ranges::find_if(parts, [name](const Part& part) {
        return (usesName(part.role) && part.text == name) ||
               (part.role == Role::Symbol &&
                Parser::WrapperLib::cleanedPath(std::string(part.text)) == name);
    });
    reportPart(kind, std::move(text), found == parts.end() ? parts.front() : *found,
               std::move(hint), std::move(notes));
}

void StatementReports::reportInput(Diagnostic diagnostic) {
    const Part* const file = script_ == nullptr ? nullptr : statement_.last(Role::InputFile);
    if (file != nullptr)
        diagnostic.notes.push_back({"while this file is read", script_->placeOf(file->text)});
    sink_->take(diagnostic);
}

void StatementReports::note(std::string text) {
    sink_->take({std::nullopt, std::move(text), statementPlace()});
}

}  // namespace Strict
