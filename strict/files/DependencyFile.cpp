#include "strict/files/DependencyFile.hpp"

#include <set>
#include <string_view>

#include "strict/files/WholeFile.hpp"

namespace Strict {

namespace {

std::string escaped(const std::string& path) {
    std::string text;
    std::size_t backslashes = 0;
    for (const char c : path) {
        if (c == '$') text += '$';
        // Backslashes before a blank are doubled, all others are literal.
        if (c == ' ' || c == '\t') text.append(backslashes + 1, '\\');
        if (c == '#') text += '\\';
        backslashes = c == '\\' ? backslashes + 1 : 0;
        text += c;
    }
    return text;
}

}  // namespace

std::string dependencyRule(const std::vector<std::string>& outputs,
                           const std::vector<std::string>& inputs) {
    const std::set<std::string_view> written(outputs.begin(), outputs.end());
    std::string rule;
    for (const std::string& output : outputs) {
        if (!rule.empty()) rule += ' ';
        rule += escaped(output);
    }
    rule += ':';
    for (const std::string& input : inputs) {
        // A file that depends on itself is a cycle.
        if (written.contains(input)) continue;
        rule += " \\\n  ";
        rule += escaped(input);
    }
    rule += '\n';
    return rule;
}

void writeDependencyFile(const std::string& path, const std::string& script, OutputSet& files,
                         DiagnosticSink& sink) {
    std::vector<std::string> inputs;
    if (script != "-") inputs.push_back(script);
    inputs.insert(inputs.end(), files.inputs().begin(), files.inputs().end());
    // A run that writes nothing else has this file.
    const bool isAlone = files.outputs().empty();
    const std::string rule = dependencyRule(isAlone ? std::vector{path} : files.outputs(), inputs);
    addFile(files, path, rule, sink);
}

}  // namespace Strict
