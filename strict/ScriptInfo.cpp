#include "strict/ScriptInfo.hpp"

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "parser/commands/Conventions.hpp"
#include "strict/IncludedFile.hpp"
#include "strict/RunOptions.hpp"
#include "strict/ScriptReading.hpp"
#include "strict/diagnostics/KeptDiagnostics.hpp"
#include "strict/files/RunFiles.hpp"
#include "strict/script/FileParts.hpp"
#include "strict/script/ParsedScript.hpp"

namespace Strict {

namespace {

constexpr std::string_view blanks = " \t\r";

std::string_view trimmed(std::string_view text) {
    const std::size_t first = std::min(text.find_first_not_of(blanks), text.size());
    text.remove_prefix(first);
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

/// The words of a line that is a remark, or nothing.
std::optional<std::string_view> remarkIn(std::string_view line) {
    line = trimmed(line);
    if (!line.starts_with("//")) return std::nullopt;
    return trimmed(line.substr(2));
}

/// The remarks of the lines directly above the last one of a text.
std::string remarkAbove(std::string_view before) {
    std::vector<std::string_view> lines;
    for (std::size_t end = before.rfind('\n'); end != std::string_view::npos;) {
        const std::size_t feed = end == 0 ? std::string_view::npos : before.rfind('\n', end - 1);
        const std::size_t begin = feed == std::string_view::npos ? 0 : feed + 1;
        const auto remark = remarkIn(before.substr(begin, end - begin));
        if (!remark) break;
        lines.push_back(*remark);
        end = feed;
    }
    std::string text;
    for (auto line = lines.rbegin(); line != lines.rend(); ++line)
        text.append(text.empty() ? "" : " ").append(*line);
    return text;
}

/// The remark beside a declaration, or else the one above it.
std::string remarkOf(std::string_view text, const FileParts::Parameter& parameter) {
    const std::size_t end = parameter.value ? parameter.value->end() : parameter.name.end();
    const std::string_view rest = text.substr(end, text.find('\n', end) - end);
    if (const auto beside = remarkIn(rest)) return std::string(*beside);
    return remarkAbove(text.substr(0, parameter.name.at));
}

/// Adds what statements name to an outline, each name once.
class ListedNames {
public:
    explicit ListedNames(Inspect::ScriptOutline& outline) : outline_(&outline) {}

    void add(std::span<const Parser::Part> parts) {
        using Parser::Role;
        for (const Parser::Part& part : parts) {
            if (part.role == Role::InputFile || part.role == Role::Template ||
                part.role == Role::SymbolFile)
                add(outline_->inputs, inputs_, pathOf(part));
            if (part.role == Role::KeyFile) add(outline_->keys, keys_, pathOf(part));
            if (part.role == Role::OutputFile) add(outline_->outputs, outputs_, pathOf(part));
            if (part.role == Role::MakesImage)
                add(outline_->images, images_, std::string(part.text));
        }
    }

private:
    using Known = std::set<std::string>;

    static std::string pathOf(const Parser::Part& part) {
        return Parser::WrapperLib::cleanedPath(std::string(part.text));
    }

    static void add(std::vector<std::string>& list, Known& known, const std::string& name) {
        if (known.insert(name).second) list.push_back(name);
    }

    Inspect::ScriptOutline* outline_;
    Known inputs_;
    Known keys_;
    Known outputs_;
    Known images_;
};

/// A parameter that needs a value has its name for it.
std::map<std::string, std::string> namesAsValues(const FileParts& parts) {
    std::map<std::string, std::string> values;
    for (std::size_t i = 0; i < parts.parameters().size(); ++i)
        if (!parts.parameters()[i].value) values.emplace(parts.names()[i], parts.names()[i]);
    return values;
}

void addParameters(Inspect::ScriptOutline& outline, const SourceFile& file) {
    const std::string_view text = file.text();
    const FileParts parts(text, [](const PartFault& /*fault*/) {});
    for (std::size_t i = 0; i < parts.parameters().size(); ++i) {
        const FileParts::Parameter& parameter = parts.parameters()[i];
        std::optional<std::string> value;
        if (parameter.value) value = parameter.value->in(text);
        outline.parameters.push_back({std::string(parts.names()[i]), std::move(value),
                                      remarkOf(text, parameter), file.lineOf(parameter.name.at)});
    }
}

Inspect::ScriptOutline outlineOf(const ScriptText& script) {
    Inspect::ScriptOutline outline;
    const auto& files = script.sources().files();
    const std::string_view text = script.written();
    outline.lines = files.front().lineOf(text.size()) - (text.ends_with('\n') ? 1 : 0);
    addParameters(outline, files.front());
    for (std::size_t i = 1; i < files.size(); ++i) outline.includes.push_back(files[i].name());
    const ParsedScript parsed(script);
    ListedNames names(outline);
    auto broken = parsed.broken().begin();
    for (std::size_t i = 0; i <= parsed.statements().size(); ++i) {
        for (; broken != parsed.broken().end() && broken->statementsBefore == i; ++broken)
            names.add(broken->begun);
        if (i != parsed.statements().size()) names.add(parsed.statements()[i].parts);
    }
    return outline;
}

}  // namespace

std::optional<Inspect::Info> readScriptInfo(const std::string& path, DiagnosticSink& sink) {
    RunFiles files(RunFiles::Mode::Memory);
    RunOptions options;
    options.script = path;
    // A value that is not used is the caller's business.
    KeptDiagnostics kept;
    ScriptReading reading(options, files, kept);
    auto written = reading.readScript(false);
    std::unique_ptr<ScriptText> script;
    if (written) {
        dropByteOrderMark(*written);
        options.variables = namesAsValues(FileParts(*written, [](const PartFault& /*fault*/) {}));
        script = reading.prepare(*written);
    }
    if (script == nullptr) {
        kept.pass(sink);
        return std::nullopt;
    }
    Inspect::Info info;
    info.path = path;
    info.script = outlineOf(*script);
    return info;
}

}  // namespace Strict
