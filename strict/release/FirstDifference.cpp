#include "strict/release/FirstDifference.hpp"

#include <algorithm>
#include <cstddef>
#include <nlohmann/json.hpp>

#include "inspect/Json.hpp"
#include "util/Printable.hpp"

namespace Strict {

namespace {

using Value = nlohmann::json;

constexpr std::size_t mostShown = 160;

/// The first step of the patch that makes the wanted document of the one that was found. Empty if
/// they have the same values.
std::string firstDifferenceOfValues(const Value& found, const Value& wanted) {
    const Value patch = Value::diff(found, wanted);
    if (patch.empty()) return {};
    const Value& step = patch.front();
    const std::string path = step.at("path").get<std::string>();
    const std::string what = path.empty() ? "it" : path;
    if (step.at("op") == "add") return what + " is missing";
    if (step.at("op") == "remove") return what + " is not there in this run";
    const auto text = [](const Value& value) {
        return std::string(Util::firstCharacters(Inspect::shortText(value), mostShown));
    };
    return what + " is " + text(found.at(Value::json_pointer(path))) + ", not " +
           text(step.at("value"));
}

/// The line of a text that has a position, as much of it as shows what is there.
std::string lineAt(std::string_view text, std::size_t position) {
    constexpr std::size_t mostBefore = 60;
    const std::size_t start = text.substr(0, position).rfind('\n') + 1;
    const bool isLong = position - start > mostBefore;
    const std::string_view rest = text.substr(isLong ? position - mostBefore : start);
    const std::string_view line = Util::firstCharacters(rest.substr(0, rest.find('\n')), mostShown);
    if (line.empty()) return position == text.size() ? "missing" : "empty";
    return (isLong ? "..." : "") + std::string(line);
}

std::string firstDifferenceOfLines(std::string_view found, std::string_view wanted) {
    const auto position =
        static_cast<std::size_t>(std::ranges::mismatch(found, wanted).in1 - found.begin());
    const auto line = std::ranges::count(found.substr(0, position), '\n') + 1;
    return "line " + std::to_string(line) + " is " + lineAt(found, position) + ", not " +
           lineAt(wanted, position);
}

}  // namespace

std::string firstDifference(std::string_view found, std::string_view wanted) {
    const Value wantedValues = Value::parse(wanted, nullptr, false);
    if (wantedValues.is_discarded()) return firstDifferenceOfLines(found, wanted);
    const Value values = Value::parse(found, nullptr, false);
    if (values.is_discarded()) return "it is not JSON";
    const std::string difference = firstDifferenceOfValues(values, wantedValues);
    return difference.empty() ? "its values are the same, and their text is another" : difference;
}

}  // namespace Strict
