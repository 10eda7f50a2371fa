#include "strict/script/ScriptText.hpp"

#include <algorithm>
#include <utility>

#include "parser/text/Preparation.hpp"
#include "parser/text/VariableExpansion.hpp"
#include "strict/script/ValueMark.hpp"

namespace Strict {

namespace {

/// What the values of parameters may make of a text.
constexpr std::size_t longestPrepared = std::size_t{1} << 26U;

}  // namespace

const char* wideEncodingOf(std::string_view text) {
    using namespace std::string_view_literals;
    const auto hasZeros = [text](std::size_t from, std::size_t count) {
        const std::string_view part = text.substr(std::min(from, text.size()), count);
        return part.size() == count && part.find_first_not_of('\0') == std::string_view::npos;
    };
    if (text.starts_with("\xFF\xFE\0\0"sv) || text.starts_with("\0\0\xFE\xFF"sv) ||
        hasZeros(0, 3) || hasZeros(1, 3))
        return "UTF-32";
    if (text.starts_with("\xFF\xFE"sv) || text.starts_with("\xFE\xFF"sv) ||
        (hasZeros(0, 1) && hasZeros(2, 1)) || (hasZeros(1, 1) && hasZeros(3, 1)))
        return "UTF-16";
    return nullptr;
}

ScriptText::ScriptText(std::string file, std::string text) : prepared_(text) {
    sources_.include(sources_.addFile(std::move(file), std::move(text)));
}

ScriptText::ScriptText(std::string file, std::string written,
                       const std::map<std::string, std::string>& variables)
    : ScriptText(std::move(file), std::move(written)) {
    prepare(variables);
}

ScriptText::ScriptText(AssembledText assembled, const std::map<std::string, std::string>& variables)
    : sources_(std::move(assembled.sources)),
      parameters_(std::move(assembled.parameters)),
      prepared_(std::move(assembled.text)) {
    map_.add(assembled.stage);
    prepare(variables);
    placeValues();
}

void ScriptText::prepare(const std::map<std::string, std::string>& variables) {
    std::map<std::string, std::string> all = variables;
    Parser::removeComments(prepared_, &map_);
    Parser::takeSubstitutions(prepared_, all, &map_);
    Parser::expandVariables(prepared_, all, &map_);
}

/// Puts the values in the places of their marks.
void ScriptText::placeValues() {
    if (parameters_.empty()) return;
    std::string text;
    Parser::TextStage stage;
    const std::string_view source = prepared_;
    std::size_t copied = 0;
    for (std::size_t at = source.find(ValueMark::sign); at != std::string_view::npos;
         at = source.find(ValueMark::sign, copied)) {
        const auto number = ValueMark::numberIn(source.substr(at));
        if (!number || *number >= parameters_.size()) throw BrokenValue();
        const ParameterValue& parameter = parameters_[*number];
        text += source.substr(copied, at - copied);
        stage.keep(copied, at - copied);
        if (parameter.value.size() > longestPrepared - std::min(longestPrepared, text.size()))
            throw Parser::VariableError(parameter.name, Facts::VariableFault::ScriptTooLong);
        text += parameter.value;
        stage.insert(at, parameter.value.size(), AssembledText::firstParameter + *number);
        copied = at + ValueMark::length;
    }
    text += source.substr(copied);
    stage.keep(copied, source.size() - copied);
    map_.add(stage);
    prepared_ = std::move(text);
}

const std::string& ScriptText::nameOf(std::size_t variable) const {
    return variable < AssembledText::firstParameter
               ? map_.variables()[variable].name
               : parameters_[variable - AssembledText::firstParameter].name;
}

TextSpan ScriptText::spanOf(std::size_t first, std::size_t last) const {
    const Parser::TextOrigin origin = map_.originOf(first);
    if (origin.variable) return {origin.offset, nameOf(*origin.variable).size()};
    // What comes from one file in one piece is marked as a whole.
    const Parser::TextOrigin end = map_.originOf(last > first ? last - 1 : first);
    const bool isWhole = !end.variable && end.offset >= origin.offset &&
                         sources_.inclusionAt(end.offset) == sources_.inclusionAt(origin.offset);
    return {origin.offset, isWhole ? end.offset + 1 - origin.offset : last - first};
}

TextSpan ScriptText::spanOf(std::string_view part) const {
    const std::size_t first = offsetOf(part);
    return spanOf(first, first + part.size());
}

Place ScriptText::placeOf(std::size_t first, std::size_t last) const {
    return sources_.placeOf(spanOf(first, last));
}

Place ScriptText::placeOf(std::string_view part) const {
    const std::size_t first = offsetOf(part);
    return placeOf(first, first + part.size());
}

std::vector<Note> ScriptText::variableNotes(std::string_view part) const {
    constexpr std::size_t longestPart = 1000;
    constexpr std::size_t mostNotes = 4;
    constexpr std::size_t longestShown = 200;
    const std::size_t first = offsetOf(part);
    std::vector<std::size_t> found;
    // What is empty is the place at its beginning.
    const std::size_t length = std::clamp<std::size_t>(part.size(), 1, longestPart);
    for (std::size_t i = 0; i < length && found.size() < mostNotes; ++i) {
        const auto variable = map_.originOf(first + i).variable;
        if (variable && std::ranges::find(found, *variable) == found.end())
            found.push_back(*variable);
    }
    std::vector<Note> notes;
    for (const std::size_t index : found) {
        const bool isParameter = index >= AssembledText::firstParameter;
        const std::string& whole = isParameter
                                       ? parameters_[index - AssembledText::firstParameter].value
                                       : map_.variables()[index].value;
        std::string value = whole.substr(0, longestShown);
        if (value.size() < whole.size()) value += "...";
        notes.push_back({(isParameter ? "the parameter " : "the variable ") + nameOf(index) +
                             " is replaced by \"" + value + "\"",
                         std::nullopt});
    }
    return notes;
}

}  // namespace Strict
