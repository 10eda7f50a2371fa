#include "editor/Script.hpp"

#include <algorithm>
#include <utility>

#include "platform/Files.hpp"
#include "platform/Paths.hpp"
#include "strict/script/FileParts.hpp"
#include "util/Printable.hpp"

namespace Editor {

namespace {

using Strict::ScriptAnalysis;
using Variables = std::map<std::string, std::string>;

std::unique_ptr<const ScriptAnalysis> analysed(const std::string& name, std::string text,
                                               Variables variables, EditedText edited,
                                               Strict::DiagnosticSink& sink) {
    Strict::RunOptions options;
    options.script = name;
    options.variables = std::move(variables);
    return std::make_unique<const ScriptAnalysis>(options, std::move(text), std::move(edited),
                                                  sink);
}

/// Keeps the diagnostics of one analysis.
class Reported final : public Strict::DiagnosticSink {
public:
    explicit Reported(std::vector<Strict::Diagnostic>& list) : list_(&list) { list.clear(); }
    void take(const Strict::Diagnostic& diagnostic) override { list_->push_back(diagnostic); }
    void countMore(Strict::Kind /*kind*/, std::uint64_t /*count*/) override {}

private:
    std::vector<Strict::Diagnostic>* list_;
};

/// A value for a parameter where the grammar expects one of these.
std::string valueAmong(const std::vector<std::string_view>& words) {
    if (words.empty()) return "x";
    if (std::ranges::find(words, "a number") != words.end()) return "1";
    const std::string_view word = words.front();
    if (word.find(' ') == std::string_view::npos) return std::string(word);
    // "2 or 4" is a choice of digits; all else that has blanks describes a name or a text.
    return word.front() >= '0' && word.front() <= '9' ? std::string(1, word.front()) : "x";
}

/// Chooses other values for parameters at which the parse failed. False if there are none.
bool chooseAgain(const ScriptAnalysis& analysis, Variables& guesses) {
    const Strict::ScriptText& script = *analysis.text();
    bool hasChosen = false;
    for (const Strict::BrokenText& broken : analysis.broken()) {
        const char* const at = broken.missed.furthest;
        if (at == nullptr || at >= script.prepared().data() + script.prepared().size()) continue;
        const FilePlace place = filePlaceOf(script, {at, 1});
        if (place.file != 0) continue;
        const auto guess = guesses.find(std::string(place.where.in(script.written())));
        if (guess == guesses.end()) continue;
        std::string value = valueAmong(broken.missed.words);
        hasChosen = hasChosen || value != guess->second;
        guess->second = std::move(value);
    }
    return hasChosen;
}

}  // namespace

Variables variablesFor(std::string_view text, const Settings& settings) {
    const Strict::FileParts parts(text, [](const Strict::PartFault& /*fault*/) {});
    Variables variables;
    for (const auto& [name, value] : settings.variables) {
        const bool isParameter = parts.indexOf(name).has_value();
        const bool isInText = parts.names().empty() && text.find(name) != std::string_view::npos;
        if (!name.empty() && (isParameter || isInText)) variables.emplace(name, value);
    }
    return variables;
}

KnownScript::KnownScript(const std::string& name, std::string text, const Settings& settings,
                         const EditedText& edited) {
    constexpr int mostTries = 8;
    const Variables variables = variablesFor(text, settings);
    Variables guesses;
    {
        const Strict::FileParts parts(text, [](const Strict::PartFault& /*fault*/) {});
        for (std::size_t i = 0; i < parts.parameters().size(); ++i) {
            std::string parameter(parts.names()[i]);
            if (!parts.parameters()[i].value && !variables.contains(parameter))
                guesses.emplace(parameter, parameter);
        }
    }
    const EditedText forgiving = [&edited](const std::string& path) {
        auto known = edited ? edited(path) : std::nullopt;
        if (!known && !Platform::isRegularFile(path)) known.emplace();
        return known;
    };
    const auto tryWith = [&](const EditedText& reader) {
        Reported sink(reported);
        Variables all = variables;
        all.insert(guesses.begin(), guesses.end());
        analysis = analysed(name, text, std::move(all), reader, sink);
    };
    for (const EditedText* const reader : {&edited, &forgiving}) {
        tryWith(*reader);
        for (int i = 0; i < mostTries && analysis->text() != nullptr; ++i) {
            if (!chooseAgain(*analysis, guesses)) break;
            tryWith(*reader);
        }
        if (analysis->text() != nullptr) break;
    }
}

std::vector<Strict::Diagnostic> KnownScript::faults() const {
    if (analysis->text() == nullptr) return reported;
    std::vector<Strict::Diagnostic> list;
    for (const Strict::BrokenText& broken : analysis->broken()) list.push_back(broken.diagnostic);
    return list;
}

void Findings::take(const Strict::Diagnostic& diagnostic) {
    const Strict::Severity severity = policy_->severityOf(diagnostic);
    if (severity == Strict::Severity::Ignored || !allowance_.admits(diagnostic)) return;
    shown_.push_back({diagnostic, severity});
}

void Findings::countMore(Strict::Kind kind, std::uint64_t count) {
    if (policy_->severityOf(kind) != Strict::Severity::Ignored) allowance_.countMore(kind, count);
}

FilePlace filePlaceOf(const Strict::ScriptText& script, std::string_view part) {
    const TextSpan span = script.spanOf(part);
    const std::size_t number = script.sources().inclusionAt(span.at);
    const Strict::Inclusion& inclusion = script.sources().inclusion(number);
    const std::size_t size = script.sources().fileOf(number).text().size();
    const std::size_t at = std::min(span.at - inclusion.begin, size);
    return {inclusion.file, {at, std::min(span.length, size - at)}};
}

Script::Script(std::string name, std::string text, const Settings& settings, EditedText edited)
    : name_(std::move(name)),
      text_(std::move(text)),
      settings_(settings),
      edited_([this, open = std::move(edited)](const std::string& path) {
          asked_.insert(path);
          return open ? open(path) : std::nullopt;
      }),
      findings_(settings_.policy),
      checked_(analysed(name_, text_, variablesFor(text_, settings_), edited_, findings_)) {}

const Strict::ScriptAnalysis& Script::analysis() const {
    if (checked_->text() != nullptr) return *checked_;
    if (known_ == nullptr) known_ = known(text_).analysis;
    return *known_;
}

std::size_t Script::fileCount() const {
    const auto* const script = prepared();
    return script == nullptr ? 1 : script->sources().files().size();
}

const std::string& Script::fileName(std::size_t file) const {
    return file == 0 ? name_ : prepared()->sources().files()[file].name();
}

std::string_view Script::fileText(std::size_t file) const {
    return file == 0 ? std::string_view(text_) : prepared()->sources().files()[file].text();
}

std::optional<std::string> Script::textOf(const std::string& path) const {
    if (auto text = edited_(path)) return text;
    if (!Platform::isRegularFile(path)) return std::nullopt;
    auto contents = Platform::readFile(path);
    if (!contents) return std::nullopt;
    Platform::translateText(*contents);
    return std::string(contents->text());
}

std::optional<FilePlace> Script::placeOf(const Strict::Place& place) const {
    std::size_t file = 0;
    while (file < fileCount() && fileName(file) != place.file) ++file;
    if (file == fileCount()) return std::nullopt;
    const std::string_view text = fileText(file);
    std::size_t begin = 0;
    for (std::size_t line = 1; line < place.line; ++line) {
        const std::size_t feed = text.find('\n', begin);
        if (feed == std::string_view::npos) break;
        begin = feed + 1;
    }
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    const auto skip = [&](std::size_t at, std::size_t characters) {
        return at + Util::firstCharacters(text.substr(at, end - at), characters).size();
    };
    if (place.column == 0) return FilePlace{file, {begin, place.line == 0 ? 0 : end - begin}};
    const std::size_t from = skip(begin, place.column - 1);
    return FilePlace{file, {from, skip(from, place.caretLength) - from}};
}

}  // namespace Editor
