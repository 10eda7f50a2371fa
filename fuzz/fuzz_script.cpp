// The script front end without its statements: arguments, comments, substitutions, variables,
// grammar, bracket expressions. Where another implementation exists, the results are compared.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <new>
#include <optional>
#include <regex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fuzz/Check.hpp"
#include "fuzz/PlatformInMemory.hpp"
#include "fuzz/ScriptInput.hpp"
#include "parser/ScriptParser.hpp"
#include "parser/text/Preparation.hpp"
#include "parser/text/VariableExpansion.hpp"
#include "platform/Files.hpp"

namespace {

using Fuzz::check;
using Variables = std::map<std::string, std::string>;

/// The standard library's engine takes a piece of the stack for every character of a match.
constexpr std::size_t longestForTheEngine = 1000;

/// The end of the text or of a line. For the engine a carriage return ends a line too.
constexpr const char* lineEnd = "(?![^\n])";

void checkComments(const std::string& before, const std::string& after) {
    check(std::ranges::count(before, '\n') == std::ranges::count(after, '\n'),
          "comments leave the line feeds");
    if (before.size() > longestForTheEngine) return;
    static const std::regex comment(std::string("//.*") + lineEnd);
    check(std::regex_replace(before, comment, "") == after,
          "comments are what their regular expression matches");
}

std::string trimmed(const std::string& text) {
    constexpr const char* space = " \t\n\v\f\r";
    const std::size_t first = text.find_first_not_of(space);
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(space) + 1 - first);
}

void checkSubstitutions(const std::string& before, Variables expected, const std::string& after,
                        const Variables& variables) {
    check(std::ranges::count(before, '\n') == std::ranges::count(after, '\n'),
          "substitutions leave the line feeds");
    if (before.size() > longestForTheEngine) return;
    static const std::regex substitution(std::string("SUBSTITUTE (.*) WITH (.*)") + lineEnd);
    const std::sregex_iterator end;
    for (std::sregex_iterator match(before.begin(), before.end(), substitution); match != end;
         ++match)
        expected.try_emplace(trimmed((*match)[1]), trimmed((*match)[2]));
    check(expected == variables, "substitutions are the groups of their regular expression");
    check(std::regex_replace(before, substitution, "") == after,
          "substitutions are taken out of the text");
}

/// Applies names without special characters as the regular expressions that they are, the longest
/// first. Nothing when there are others, or when the text gets too long for that.
std::optional<std::string> expandedOneByOne(std::string text, const Variables& variables) {
    constexpr const char* special = "^$\\.*+?()[]{}|";
    std::vector<std::pair<std::string, std::string>> ordered(variables.begin(), variables.end());
    std::ranges::stable_sort(ordered, [](const auto& left, const auto& right) {
        return std::pair(left.first.size(), left.first) >
               std::pair(right.first.size(), right.first);
    });
    for (const auto& [name, value] : ordered) {
        if (std::max(text.size(), name.size()) > longestForTheEngine || name.empty() ||
            name.find_first_of(special) != std::string::npos)
            return std::nullopt;
        text = std::regex_replace(text, std::regex(name), value);
    }
    return text;
}

void expand(std::string& text, const Variables& variables) {
    const std::optional<std::string> expected = expandedOneByOne(text, variables);
    try {
        Parser::expandVariables(text, variables);
    } catch (const Parser::VariableError&) {
        check(!expected, "plain names are not errors");
        throw;
    }
    if (expected) check(text == *expected, "plain names are replaced like regular expressions");
}

void checkParse(const std::string& text) {
    Parser::ScriptParser parser;
    const auto result = parser.parseScript(text);
    check(result.hit, "a script matches, if only the empty one");
    check(result.length <= text.size(), "a match is a part of the text");
    check(result.stop == text.data() + result.length, "a match begins with the text");
    check(result.full == (result.length == text.size()), "a full match is all of the text");
    // What matched is a script of its own, with the same statements.
    if (result.full) return;
    Parser::ScriptParser again;
    const auto part = again.parseScript(std::string_view(text).substr(0, result.length));
    check(part.full, "what matched is a script");
    check(again.statementCount() == parser.statementCount(), "what matched has all statements");
}

void checkCalculate(const std::string& text) {
    const std::string calculated = Parser::calculated(text);
    if (calculated == text) return;
    check(text.find('[') != std::string::npos, "only brackets are calculated");
    check(calculated.find('[') == std::string::npos, "one value takes every bracket's place");
}

void prepareAndParse(const Fuzz::ScriptInput& input) {
    auto contents = Platform::readFile(Fuzz::ScriptInput::scriptPath);
    Platform::translateText(*contents);
    std::string text(contents->text());
    const std::string source = text;
    Parser::removeComments(text);
    checkComments(source, text);
    const std::string uncommented = text;
    Variables variables = input.variables;
    Parser::takeSubstitutions(text, variables);
    checkSubstitutions(uncommented, input.variables, text, variables);
    expand(text, variables);
    checkParse(text);
    checkCalculate(text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > Fuzz::Machine::mostInput) return 0;
    Fuzz::Machine machine;
    try {
        prepareAndParse(Fuzz::ScriptInput(data, size, machine));
    } catch (const Parser::VariableError&) {
        // A name that is not a regular expression, or one that takes too much.
    } catch (const std::bad_alloc&) {
        // A text that grew too long.
    }
    return 0;
}
