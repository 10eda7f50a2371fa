// Parameters and includes: a script is put together with its files, and every character of what the
// grammar reads has a place in one of them.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "fuzz/Check.hpp"
#include "fuzz/PlatformInMemory.hpp"
#include "fuzz/ScriptInput.hpp"
#include "parser/text/VariableExpansion.hpp"
#include "platform/Files.hpp"
#include "strict/script/ScriptAssembly.hpp"

namespace {

using Fuzz::check;

/// Counts what is reported.
class Reports final : public Strict::DiagnosticSink {
public:
    void take(const Strict::Diagnostic& diagnostic) override {
        ++count;
        check(diagnostic.kind.has_value(), "what is wrong has a kind");
    }
    void countMore(Strict::Kind /*kind*/, std::uint64_t more) override { count += more; }

    std::uint64_t count = 0;
};

Strict::ScriptFile readFile(const std::string& path) {
    auto contents = Platform::readFile(path);
    if (!contents)
        return {std::nullopt, std::nullopt, true, {Strict::Kind::CannotOpen, "cannot open"}};
    Platform::translateText(*contents);
    return {std::string(contents->text())};
}

/// Directives are in the order of the text, without overlap, and begin with their words.
void checkDirectives(std::string_view text) {
    const Strict::Directives found = Strict::directivesIn(text);
    std::set<std::pair<std::size_t, std::size_t>> wholes;
    for (const auto& directive : found.parameters) {
        wholes.emplace(directive.whole.at, directive.whole.end());
        check(directive.whole.in(text).starts_with(Strict::parameterWord), "PARAMETER begins it");
        check(Strict::isParameterName(directive.name.in(text)), "a parameter has a name");
    }
    for (const auto& directive : found.includes) {
        wholes.emplace(directive.whole.at, directive.whole.end());
        check(directive.whole.in(text).starts_with(Strict::includeWord), "INCLUDE begins it");
        check(directive.path.length != 0, "an INCLUDE has a path");
    }
    std::size_t end = 0;
    for (const auto& [begin, last] : wholes) {
        check(begin >= end && last <= text.size(), "directives lie side by side");
        end = last;
    }
}

/// The first and the last characters have places in files of the script.
void checkPlaces(const Strict::ScriptText& script) {
    constexpr std::size_t most = 200;
    const std::size_t size = script.prepared().size();
    for (std::size_t i = 0; i < std::min(size, most); ++i) {
        for (const std::size_t at : {i, size - 1 - i}) {
            const Strict::Place place = script.placeOf(at, at + 1);
            const auto& files = script.sources().files();
            const auto file = std::ranges::find(files, place.file, &Strict::SourceFile::name);
            check(file != files.end(), "a place is in a file of the script");
            check(place.line >= 1 && place.line <= file->lineOf(file->text().size()),
                  "a place is in a line of its file");
            check(place.includedFrom.size() <= Strict::ScriptAssembly::deepest,
                  "levels have a bound");
        }
    }
}

void assemble(const Fuzz::ScriptInput& input) {
    const Strict::ScriptFile script = readFile(Fuzz::ScriptInput::scriptPath);
    checkDirectives(*script.text);
    Reports reports;
    Strict::ScriptAssembly assembly(&readFile, {"recipes/"}, reports);
    const auto assembled =
        assembly.assemble(Fuzz::ScriptInput::scriptPath, script, input.variables);
    check(assembled != nullptr || reports.count != 0, "what fails is reported");
    if (assembled == nullptr) return;
    checkPlaces(*assembled);
    if (Strict::mayHaveDirectives(*script.text)) return;
    const Strict::ScriptText plain(Fuzz::ScriptInput::scriptPath, *script.text, input.variables);
    check(plain.prepared() == assembled->prepared(), "a script without directives stays as it is");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > Fuzz::Machine::mostInput) return 0;
    Fuzz::Machine machine;
    try {
        assemble(Fuzz::ScriptInput(data, size, machine));
    } catch (const Parser::VariableError&) {
        // A name that is not a regular expression, or one that takes too much.
    } catch (const Strict::BrokenValue&) {
        // A pattern that matches within the mark of a value.
    } catch (const std::bad_alloc&) {
        // A text that grew too long.
    }
    return 0;
}
