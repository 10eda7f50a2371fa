#include "inspect/ScriptOutline.hpp"

#include <algorithm>

#include "util/Printable.hpp"

namespace Inspect {

namespace {

std::string outlineRows(const std::string& label, const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += "  " + label + Util::printable(name) + "\n";
    return text;
}

/// "name" or "name = default".
std::string nameText(const ScriptOutline::Parameter& parameter) {
    return Util::printable(parameter.name) +
           (parameter.value ? " = " + Util::printable(*parameter.value) : "");
}

}  // namespace

std::string textOf(const ScriptOutline& outline) {
    constexpr std::size_t widest = 40;
    std::size_t width = 0;
    for (const auto& parameter : outline.parameters)
        width = std::max(width, std::min(widest, Util::characters(nameText(parameter))));
    std::string text;
    for (const auto& parameter : outline.parameters) {
        const std::string name = nameText(parameter);
        text += "  parameter " + name;
        if (!parameter.remark.empty()) {
            text.append(width - std::min(width, Util::characters(name)) + 2, ' ');
            text += Util::printable(parameter.remark);
        }
        text += '\n';
    }
    return text + outlineRows("includes  ", outline.includes) +
           outlineRows("input     ", outline.inputs) + outlineRows("key       ", outline.keys) +
           outlineRows("image     ", outline.images) + outlineRows("output    ", outline.outputs);
}

}  // namespace Inspect
