#include "strict/RunListener.hpp"

#include <cstddef>
#include <string>
#include <type_traits>
#include <variant>

#include "inspect/Words.hpp"
#include "strict/diagnostics/FieldWords.hpp"
#include "strict/record/Provenance.hpp"

namespace Strict {

namespace {

using namespace Facts;

/// The place in an input file.
Place placeOf(const FieldWords& words) {
    constexpr std::size_t longestShown = 160;
    Place place{std::string(words.file),
                static_cast<std::size_t>(words.line),
                0,
                std::string(words.excerpt.substr(0, longestShown)),
                0,
                0};
    if (words.column != 0 && words.column <= place.excerpt.size()) {
        place.column = words.column;
        place.caret = words.column - 1;
        place.caretLength = 1;
    }
    return place;
}

}  // namespace

void RunListener::reportField(const FieldFact& fact) {
    FieldWords words = wordsFor(fact, circumstances_.options);
    if (words.line == 0)
        reports_->report(words.kind, std::move(words.text), {Parser::Role::InputFile},
                         std::move(words.hint), {}, words.count);
    else
        reports_->reportInput({words.kind, std::move(words.text), placeOf(words),
                               std::move(words.hint), notesOn(fact)});
}

/// What is at an address of which a file has two bytes.
std::vector<Note> RunListener::notesOn(const FieldFact& fact) const {
    const auto* const conflict = std::get_if<RecordsConflict>(&fact);
    if (conflict == nullptr || provenance_ == nullptr) return {};
    const std::string name = provenance_->givenNameAt(conflict->address);
    if (name.empty()) return {};
    return {{Inspect::addressText(conflict->address) + " is in " + name}};
}

/// Where bytes that differ or overlap, or a signature that is wrong, come from.
std::vector<Note> RunListener::notesOn(const Fact& fact) const {
    if (const auto* const refused = std::get_if<OverlapRefused>(&fact))
        return provenance_ == nullptr ? notesOnLines(*refused, "") : provenance_->notesOn(*refused);
    if (provenance_ == nullptr) return {};
    if (std::holds_alternative<SignatureWrong>(fact)) return provenance_->notesOnValue();
    const auto* const differs = std::get_if<ImageDiffers>(&fact);
    return differs == nullptr ? std::vector<Note>() : provenance_->notesOn(*differs);
}

void RunListener::hear(const Fact& fact) {
    if (const auto* const field = std::get_if<FieldFact>(&fact)) {
        reportField(*field);
        return;
    }
    const auto* const readable = std::get_if<KeyReadable>(&fact);
    if (readable != nullptr && !readableKeys_.emplace(readable->file).second) return;
    hasRefused_ = hasRefused_ || isRefusal(fact);
    if (auto words = wordsFor(fact, circumstances_)) {
        if (words->name.empty())
            reports_->report(words->kind, std::move(words->text), words->roles,
                             std::move(words->hint), notesOn(fact));
        else
            reports_->reportName(words->kind, words->name, std::move(words->text),
                                 std::move(words->hint));
    }
    if (printed_ == nullptr) return;
    std::visit(
        [this](const auto& f) {
            if constexpr (isPrinted<std::decay_t<decltype(f)>>) printed_->hear(f);
        },
        fact);
}

}  // namespace Strict
