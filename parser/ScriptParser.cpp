#include "parser/ScriptParser.hpp"

#include <algorithm>
#include <chrono>
#include <exception>
#include <iostream>

#include "parser/ScriptText.hpp"
#include "parser/VariableExpansion.hpp"
#include "platform/Platform.hpp"
#include "util/Hex.hpp"
#include "util/Report.hpp"

namespace Parser {

namespace {

/// Nested or chained expressions that one value may hold.
constexpr unsigned deepestExpression = 1000;
/// Expressions that one text may try. A sound one is tried once for each character at most. One
/// that lacks a parenthesis is tried again by every operator in front of it, and those again by
/// the operators in front of the parenthesis that holds them.
constexpr std::size_t triesForAnyText = 10'000;
constexpr std::size_t triesForEachCharacter = 8;

double secondsSince(std::chrono::steady_clock::time_point start) {
    using std::chrono::milliseconds;
    const auto elapsed = std::chrono::steady_clock::now() - start;
    constexpr double ticksPerSecond = 1000.0;
    return static_cast<double>(std::chrono::duration_cast<milliseconds>(elapsed).count()) /
           ticksPerSecond;
}

}  // namespace

bool ScriptParser::run() {
    const auto start = std::chrono::steady_clock::now();
    bool isParsed = false;
    try {
        context.variables = initialVariables;
        auto contents = Platform::readFile(scriptPath);
        if (!contents) {
            std::cerr << "Could not open input file: " << scriptPath << std::endl;
            return false;
        }
        // A part of a script may well parse, and then do a part of its work.
        if (contents->reading != Platform::Reading::Complete) throw std::exception();
        Platform::translateText(*contents);
        isParsed = prepareAndRun(std::string(std::exchange(contents, std::nullopt)->text()));
    } catch (const VariableError& error) {
        Util::reportLine("Error: Variable name ", error.name(), " ", error.reason(), " !");
        Util::reportLine("Operation aborted.");
    } catch (const std::exception&) {
        Util::reportLine("Error: Script ", scriptPath, " could not be prepared !");
        Util::reportLine("Operation aborted. Maybe stack overflow, script too big");
    }
    currentCmd.reset();
    commands.clear();
    Util::reportLine("\nKvTessaron Total Time: ", secondsSince(start), " seconds");
    return isParsed;
}

bool ScriptParser::prepareAndRun(std::string text) {
    removeComments(text);
    takeSubstitutions(text, context.variables);
    expandVariables(text, context.variables);
    context.variables.clear();
    const ParseResult parsed = parseScript(text);
    if (!parsed.full) {
        reportSyntaxError(std::string_view(text).substr(0, parsed.length));
        return false;
    }
    for (const auto& command : commands) command->execute(context);
    return true;
}

void ScriptParser::reportSyntaxError(std::string_view matched) const {
    constexpr std::string_view title =
        "SCRIPT PARSING ERROR DETECTED!  DETAILLED DESCRIPTION FOLLOWS";
    const std::string rule(title.size(), '-');
    const auto line = std::ranges::count(matched, '\n') + 1;
    Util::reportLine();
    Util::reportLine(rule);
    Util::reportLine(rule);
    Util::reportLine(title);
    Util::reportLine(rule);
    Util::reportLine(rule);
    Util::reportLine(rule);
    Util::reportLine("SCRIPT PARSING ERROR -> STACK LAST COMMAND: ");
    Util::reportLine(rule);
    Util::reportLine(lastCommand);
    Util::reportLine(rule);
    Util::reportLine("SCRIPT PARSING ERROR -> STACK LAST COMMAND TOKENS: ");
    Util::reportLine(rule);
    Util::reportLine(lastTokens);
    Util::reportLine("LINE: ", std::to_string(line));
}

std::string ScriptParser::calculated(const std::string& text) {
    // Without a bracket there is nothing to evaluate, and no grammar need be built to say so.
    if (text.find('[') == std::string::npos) return text;
    return ScriptParser().calculate(text);
}

std::string ScriptParser::calculate(const std::string& text) {
    resetState();
    // What counts is what the actions left behind, not whether the parse went through.
    parseScript("CALCULATE " + text);
    const auto brackets = static_cast<std::size_t>(std::ranges::count(text, '['));
    if (valueCollection.empty() || brackets != valueCollection.size()) return text;
    const std::string number = " 0x" + Util::hexWord(valueCollection.front());
    std::string valued = text;
    std::size_t from = 0;
    for (std::size_t open = valued.find('['); open != std::string::npos;
         open = valued.find('[', from)) {
        const std::size_t close = valued.find(']', open);
        if (close == std::string::npos) return text;
        // The character in front of the bracket goes, since the number brings a blank.
        const std::size_t first = open > from ? open - 1 : open;
        valued.replace(first, close + 1 - first, number);
        from = first + number.size();
    }
    return valued;
}

void ScriptParser::resetState() {
    lastTokens.clear();
    lastCommand.clear();
    currentText.clear();
    currentValue = 0;
    areaStart = 0;
    areaLength = 0;
    valueCollection.clear();
}

void ScriptParser::endStatement(Position first, Position last) {
    lastTokens += "End";
    lastCommand.append(first, last);
    commands.push_back(std::move(currentCmd));
}

void ScriptParser::addValues() {
    valueStack[1] += valueStack[0];
    valueStack.pop_front();
}

void ScriptParser::subtractValues() {
    valueStack[1] -= valueStack[0];
    valueStack.pop_front();
}

void ScriptParser::multiplyValues() {
    valueStack[1] *= valueStack[0];
    valueStack.pop_front();
}

void ScriptParser::divideValues() {
    if (valueStack[0] != 0) valueStack[1] /= valueStack[0];
    valueStack.pop_front();
}

void ScriptParser::moduloValues() {
    if (valueStack[0] != 0) valueStack[1] %= valueStack[0];
    valueStack.pop_front();
}

void ScriptParser::takeValue() {
    if (!valueStack.empty()) currentValue = valueStack.front();
    valueStack.clear();
}

void ScriptParser::beginText(std::size_t size) {
    fruitlessSearches = {};
    lastTokens.clear();
    triesLeft = triesForAnyText + triesForEachCharacter * size;
}

bool ScriptParser::beginExpression() {
    isExpressionBad = false;
    valueStack.clear();
    return true;
}

bool ScriptParser::enterExpression() {
    if (expressionDepth == deepestExpression || triesLeft == 0) isExpressionBad = true;
    if (isExpressionBad) return false;
    ++expressionDepth;
    --triesLeft;
    return true;
}

bool ScriptParser::hasOperands() {
    constexpr std::size_t operands = 2;
    if (valueStack.size() < operands) isExpressionBad = true;
    return valueStack.size() >= operands;
}

}  // namespace Parser
