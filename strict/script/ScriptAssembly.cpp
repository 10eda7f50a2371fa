#include "strict/script/ScriptAssembly.hpp"

#include <algorithm>

#include "parser/commands/Conventions.hpp"
#include "platform/Paths.hpp"
#include "strict/diagnostics/Suggestion.hpp"
#include "strict/script/ValueMark.hpp"

namespace Strict {

namespace {

/// A path that does not begin in the folder of the file that has it.
bool isAbsolute(const std::string& path) {
    const bool hasDrive = Platform::pathSeparator == '\\' && path.size() > 1 && path[1] == ':';
    return path.starts_with('/') || path.starts_with(Platform::pathSeparator) || hasDrive;
}

}  // namespace

std::unique_ptr<ScriptText> ScriptAssembly::assemble(const std::string& name, ScriptFile script,
                                                     const Variables& variables) {
    const std::string written = *script.text;
    const std::size_t inclusion = result_.sources.include(addFile(name, std::move(script)));
    inspect(inclusion);
    const FileParts& parts = partsOf(inclusion);
    const bool isPlain = parts.items().empty();
    if (isPlain && isGood_) return std::make_unique<ScriptText>(name, written, variables);
    const bool hasParameters = !parts.parameters().empty();
    const Values values = hasParameters ? valuesOfScript(variables) : Values();
    put(inclusion, values);
    if (!isGood_) return nullptr;
    return std::make_unique<ScriptText>(std::move(result_),
                                        hasParameters ? Variables() : variables);
}

void ScriptAssembly::report(const Diagnostic& diagnostic) {
    // Of the kinds that are reported here, a policy may drop these.
    const bool isOptional =
        diagnostic.kind == Kind::DuplicateName || diagnostic.kind == Kind::UnusedVariable;
    isGood_ = isGood_ && isOptional;
    hasOnlyReadFaults_ = hasOnlyReadFaults_ && isOptional;
    sink_->take(diagnostic);
}

void ScriptAssembly::reportReading(const Diagnostic& diagnostic) {
    const bool hadOnlyReadFaults = hasOnlyReadFaults_;
    report(diagnostic);
    hasOnlyReadFaults_ = hadOnlyReadFaults;
}

std::size_t ScriptAssembly::addFile(const std::string& name, ScriptFile file) {
    const std::size_t number = result_.sources.addFile(name, std::move(*file.text));
    files_.emplace_back();
    paths_.emplace(name, number);
    if (file.identity) identities_.emplace(*file.identity, number);
    return number;
}

/// Finds the parts of a file when it is first included.
void ScriptAssembly::inspect(std::size_t inclusion) {
    const ScriptSources& sources = result_.sources;
    std::optional<FileParts>& parts = files_[sources.inclusion(inclusion).file];
    if (parts) return;
    parts.emplace(sources.fileOf(inclusion).text(), [&](PartFault fault) {
        Diagnostic diagnostic{fault.kind, std::move(fault.text), placeIn(inclusion, fault.where),
                              std::move(fault.hint)};
        if (fault.first)
            diagnostic.notes.push_back(
                {"the parameter is declared here", placeIn(inclusion, *fault.first)});
        report(diagnostic);
    });
}

/// Appends the text of a file, with the files and values in the places of their directives.
void ScriptAssembly::put(std::size_t inclusion, const Values& values) {
    const FileParts& parts = partsOf(inclusion);
    std::size_t copied = 0;
    for (const FileParts::Item& item : parts.items()) {
        if (isFull_) return;
        keep(inclusion, copied, item.where.at);
        copied = item.where.end();
        if (item.what == FileParts::Item::What::Value)
            insert(inclusion, item.where, values[item.index]);
        if (item.what == FileParts::Item::What::File)
            include(inclusion, parts.includes()[item.index], values);
    }
    keep(inclusion, copied, parts.text().size());
}

void ScriptAssembly::keep(std::size_t inclusion, std::size_t from, std::size_t to) {
    result_.text += partsOf(inclusion).text().substr(from, to - from);
    result_.stage.keep(result_.sources.inclusion(inclusion).begin + from, to - from);
}

void ScriptAssembly::insert(std::size_t inclusion, TextSpan word, const Value& value) {
    if (!charge(value.text.size(), inclusion, word)) return;
    result_.text += value.text;
    result_.stage.insert(result_.sources.inclusion(inclusion).begin + word.at, value.text.size(),
                         AssembledText::firstParameter + value.number);
}

void ScriptAssembly::include(std::size_t outer, const IncludeDirective& directive,
                             const Values& values) {
    const std::string written = expanded(partsOf(outer), directive.path, values);
    const std::string path = Parser::WrapperLib::cleanedPath(resolved(written, std::string::npos));
    if (path.empty()) {
        report({Kind::Syntax, "the name of the file is empty", placeIn(outer, directive.path)});
        return;
    }
    const auto file = find(outer, directive, path);
    if (!file || !isAllowed(outer, directive, *file)) return;
    if (!charge(result_.sources.files()[*file].text().size(), outer, directive.path)) return;
    const std::size_t inclusion = result_.sources.include(*file, outer, directive.whole);
    inspect(inclusion);
    const Values given = valuesOf(inclusion, outer, directive, values);
    if (!isFull_) put(inclusion, given);
}

/// The file that an INCLUDE names, or nothing after a diagnostic.
std::optional<std::size_t> ScriptAssembly::find(std::size_t outer,
                                                const IncludeDirective& directive,
                                                const std::string& path) {
    const std::string& from = result_.sources.fileOf(outer).name();
    std::vector<std::string> candidates{path};
    if (!isAbsolute(path)) {
        candidates.front().insert(0, from, 0, Platform::fileNameStart(from));
        for (const std::string& folder : folders_) candidates.push_back(folder + path);
    }
    ScriptFile first{};
    for (const std::string& candidate : candidates) {
        ScriptFile failed{};
        if (const auto file = read(candidate, failed)) return file;
        if (candidate == candidates.front() || !failed.isMissing) first = std::move(failed);
        if (!first.isMissing) break;
    }
    Diagnostic fault = std::move(first.fault);
    fault.place = placeIn(outer, directive.path);
    if (first.isMissing && candidates.size() > 1)
        fault.hint = "a path begins in the folder of this file, or in that of the recipes";
    if (fault.kind == Kind::Syntax)
        report(fault);
    else
        reportReading(fault);
    return std::nullopt;
}

/// The file at a path, which may be known by another one.
std::optional<std::size_t> ScriptAssembly::read(const std::string& path, ScriptFile& failed) {
    if (const auto known = paths_.find(path); known != paths_.end()) return known->second;
    if (const auto known = unreadable_.find(path); known != unreadable_.end()) {
        failed = known->second;
        return std::nullopt;
    }
    ScriptFile file = read_(path);
    if (!file.text) {
        failed = unreadable_.emplace(path, std::move(file)).first->second;
        return std::nullopt;
    }
    if (file.identity)
        if (const auto known = identities_.find(*file.identity); known != identities_.end()) {
            paths_.emplace(path, known->second);
            return known->second;
        }
    return addFile(path, std::move(file));
}

/// False, after a diagnostic, if the file would include itself, or if there are too many levels or
/// files.
bool ScriptAssembly::isAllowed(std::size_t outer, const IncludeDirective& directive,
                               std::size_t file) {
    const ScriptSources& sources = result_.sources;
    const std::string& name = sources.files()[file].name();
    const auto refuse = [&](std::string text) {
        report({Kind::Syntax, std::move(text), placeIn(outer, directive.path)});
        return false;
    };
    std::size_t depth = 0;
    for (std::optional<std::size_t> one = outer; one; one = sources.inclusion(*one).outer) {
        if (sources.inclusion(*one).file == file) return refuse(name + " includes itself");
        if (++depth > deepest)
            return refuse("there are more than " + std::to_string(deepest) +
                          " levels of included files");
    }
    if (++inclusions_ <= mostInclusions) return true;
    isFull_ = true;
    return refuse("there are more than " + std::to_string(mostInclusions) + " included files");
}

/// False, after a diagnostic, if the text becomes too long.
bool ScriptAssembly::charge(std::size_t size, std::size_t inclusion, TextSpan where) {
    if (isFull_) return false;
    if (size <= longestText - size_) {
        size_ += size;
        return true;
    }
    isFull_ = true;
    report({Kind::Syntax, "the script becomes longer than 64 MiB", placeIn(inclusion, where)});
    return false;
}

ScriptAssembly::Value ScriptAssembly::literal(std::string_view name, std::string value) {
    result_.parameters.push_back({std::string(name), std::move(value)});
    const std::size_t number = result_.parameters.size() - 1;
    return {number, ValueMark::of(number)};
}

/// The default of a parameter; its own name after a diagnostic if it has none.
ScriptAssembly::Value ScriptAssembly::defaultOf(std::size_t inclusion, std::size_t parameter) {
    const FileParts& parts = partsOf(inclusion);
    const FileParts::Parameter& declared = parts.parameters()[parameter];
    const std::string name(parts.names()[parameter]);
    if (!declared.value) {
        const bool isOfScript = !result_.sources.inclusion(inclusion).outer;
        report({Kind::MissingParameter, "the parameter " + name + " has no value and no default",
                placeIn(inclusion, declared.name),
                isOfScript ? "give it after the script: " + name + "=VALUE"
                           : "give it in the INCLUDE: WITH { " + name + "=VALUE }"});
        return literal(name, name);
    }
    const std::string_view value = declared.value->in(parts.text());
    charge(value.size(), inclusion, *declared.value);
    return literal(name, std::string(value));
}

void ScriptAssembly::reportUnused(std::size_t inclusion, std::string_view name,
                                  std::optional<Place> place) {
    const FileParts& parts = partsOf(inclusion);
    const std::string& file = result_.sources.fileOf(inclusion).name();
    if (parts.indexOf(name)) {
        report({Kind::UnusedVariable,
                file + " declares the parameter " + std::string(name) + " and does not use it",
                std::move(place)});
        return;
    }
    // Each suggestion walks through all names.
    constexpr std::size_t mostSuggestions = 100;
    std::vector<std::string> known;
    if (suggestions_++ < mostSuggestions) known.assign(parts.names().begin(), parts.names().end());
    const auto meant = nearest(name, known);
    Diagnostic diagnostic{Kind::UnusedVariable,
                          std::string(name) + " is not a parameter of " + file, std::move(place),
                          meant ? "did you mean " + *meant + "?" : ""};
    if (meant) diagnostic.correction = {std::string(name), {*meant}};
    report(diagnostic);
}

ScriptAssembly::Values ScriptAssembly::valuesOfScript(const Variables& variables) {
    const FileParts& parts = partsOf(0);
    for (const auto& [name, value] : variables) {
        const auto index = parts.indexOf(name);
        if (!index || !parts.parameters()[*index].isUsed) reportUnused(0, name, std::nullopt);
    }
    Values values;
    for (std::size_t i = 0; i < parts.parameters().size(); ++i) {
        const auto given = variables.find(std::string(parts.names()[i]));
        values.push_back(given == variables.end() ? defaultOf(0, i)
                                                  : literal(given->first, given->second));
    }
    return values;
}

ScriptAssembly::Values ScriptAssembly::valuesOf(std::size_t inclusion, std::size_t outer,
                                                const IncludeDirective& directive,
                                                const Values& outerValues) {
    constexpr std::size_t longestShown = 201;
    const FileParts& from = partsOf(outer);
    const FileParts& parts = partsOf(inclusion);
    std::vector<std::optional<Value>> given(parts.parameters().size());
    for (const IncludeDirective::Argument& argument : directive.arguments) {
        const std::string_view name = argument.name.in(from.text());
        const auto index = parts.indexOf(name);
        if (!index || !parts.parameters()[*index].isUsed)
            reportUnused(inclusion, name, placeIn(outer, argument.name));
        if (!index) continue;
        if (given[*index]) {
            report({Kind::DuplicateName, std::string(name) + " has a value already",
                    placeIn(outer, argument.name), "the first one counts"});
            continue;
        }
        std::string text = expanded(from, argument.value, outerValues);
        if (!charge(text.size(), outer, argument.value)) return {};
        result_.parameters.push_back({std::string(name), resolved(text, longestShown)});
        given[*index] = Value{result_.parameters.size() - 1, std::move(text)};
    }
    Values values;
    for (std::size_t i = 0; i < given.size(); ++i)
        values.push_back(given[i] ? std::move(*given[i]) : defaultOf(inclusion, i));
    return values;
}

/// A part of a file with the values of its parameters in place.
std::string ScriptAssembly::expanded(const FileParts& file, TextSpan part, const Values& values) {
    std::string text;
    std::size_t copied = part.at;
    for (const NamedWord& word : file.wordsIn(part)) {
        text += file.text().substr(copied, word.where.at - copied);
        text += values[word.name].text;
        if (text.size() > longestText) return text;
        copied = word.where.end();
    }
    return text += file.text().substr(copied, part.end() - copied);
}

/// A text with the values in the places of their marks, `most` bytes at most.
std::string ScriptAssembly::resolved(std::string_view text, std::size_t most) const {
    std::string result;
    while (!text.empty() && result.size() < most) {
        const std::size_t next = std::min(text.find(ValueMark::sign), text.size());
        result += text.substr(0, std::min(next, most));
        text.remove_prefix(next);
        const auto number = ValueMark::numberIn(text);
        // A sign of the file's own was reported.
        if (number && *number < result_.parameters.size())
            result += result_.parameters[*number].value.substr(0, most);
        text.remove_prefix(std::min(number ? ValueMark::length : 1, text.size()));
    }
    return result.substr(0, most);
}

}  // namespace Strict
