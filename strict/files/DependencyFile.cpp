#include "strict/files/DependencyFile.hpp"

#include <algorithm>
#include <cctype>
#include <iterator>

#include "strict/files/WholeFile.hpp"

namespace Strict {

namespace {

/// A letter and a colon, which make and ninja take for a drive.
bool isDrive(const std::string& path) {
    return path.size() > 2 && std::isalpha(static_cast<unsigned char>(path[0])) != 0 &&
           path[1] == ':' && (path[2] == '/' || path[2] == '\\');
}

std::string escaped(const std::string& path) {
    std::string text;
    std::size_t backslashes = 0;
    for (std::size_t i = 0; i < path.size(); ++i) {
        const char c = path[i];
        if (c == '$') text += '$';
        if (c == ':' && !(i == 1 && isDrive(path))) text += '\\';
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
    std::string rule;
    for (const std::string& output : outputs) {
        if (!rule.empty()) rule += ' ';
        rule += escaped(output);
    }
    rule += ':';
    for (const std::string& input : inputs) {
        rule += " \\\n  ";
        rule += escaped(input);
    }
    rule += '\n';
    return rule;
}

void writeDependencyFile(const std::string& path, const std::vector<std::string>& given,
                         RunFiles& files, DiagnosticSink& sink) {
    std::vector<std::string> inputs;
    const auto& read = files.inputs();
    // A file that depends on itself is a cycle.
    const auto counts = [&files](const std::string& file) { return !files.isWritten(file); };
    for (const std::string& file : given)
        if (file != "-" && !file.empty() && counts(file) &&
            std::ranges::find(read, files.inputName(file)) == read.end())
            inputs.push_back(file);
    std::ranges::copy_if(read, std::back_inserter(inputs), counts);
    // A run that writes nothing else has this file.
    const bool isAlone = files.outputs().empty();
    const std::string rule = dependencyRule(isAlone ? std::vector{path} : files.outputs(), inputs);
    addFile(files, path, rule, sink);
}

}  // namespace Strict
