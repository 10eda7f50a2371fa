#include "strict/meaning/AreaRules.hpp"

#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "inspect/Words.hpp"

namespace Strict {

namespace {

using Buffer::Area;
using Parser::Part;
using Parser::Role;
using Parser::Statement;

std::string areaText(const Area& area) {
    std::string text(1, '{');
    text += Inspect::addressText(area.start);
    text += ", ";
    text += Inspect::hexText(area.length);
    text += '}';
    return text;
}

/// "@App (0x00000100 to 0x000001FF) or @Boot (no addresses)"
std::string textOf(const Images& images, std::span<const std::size_t> numbers) {
    std::string text;
    for (const std::size_t number : numbers) {
        const Image& image = images[number];
        if (!text.empty()) text += " or ";
        text += image.name;
        text += " (";
        text += image.range->length == 0 ? "no addresses" : Inspect::rangeText(*image.range);
        text += ")";
    }
    return text;
}

/// The area is where the statement needs it, in an image of which the range is known.
bool isInside(const Step& step, const Area& area, const Area& range) {
    if (!step.has(Role::MakesImage)) return range.contains(area);
    return area.length == 0 || (range.length != 0 && area.clippedTo(range));
}

}  // namespace

void checkEmptyAreas(const Step& step) {
    for (const Part& part : step.statement.parts) {
        if (part.role != Role::Area && part.role != Role::Range) continue;
        const Area area = step.statement.areaOf(part);
        if (area.length != 0) continue;
        const bool isNotGiven = part.role == Role::Range && area.start == 0;
        step.findings.report(Kind::EmptyArea,
                             isNotGiven ? "a range of 0 and 0 counts as not given"
                                        : "this area has the length 0, so it has no address",
                             part.text, "an area is {start, length}");
    }
}

void checkDoubleAreas(const Step& step) {
    const auto isArea = [](const Part& part) { return part.role == Role::Area; };
    if (std::ranges::count_if(step.statement.parts, isArea) < 2) return;
    std::vector<const Part*> parts;
    for (const Part& part : step.statement.all(Role::Area))
        if (step.statement.areaOf(part).length != 0) parts.push_back(&part);
    if (parts.size() < 2) return;
    std::ranges::stable_sort(parts, {},
                             [&](const Part* part) { return step.statement.areaOf(*part).start; });
    const Part* longest = parts.front();  // of those before, the one that ends last
    for (std::size_t i = 1; i < parts.size(); ++i) {
        const Area one = step.statement.areaOf(*longest);
        const Area other = step.statement.areaOf(*parts[i]);
        if (one.end() > other.start) {
            const bool isLater = parts[i]->text.data() > longest->text.data();
            step.findings.report(
                Kind::DoubleArea,
                "this area has addresses that another area of the list has as well",
                (isLater ? parts[i] : longest)->text, "an area is {start, length}",
                {step.findings.note("the other one", (isLater ? longest : parts[i])->text)});
        }
        if (other.end() > one.end()) longest = parts[i];
    }
}

void checkOutsideAreas(const Step& step) {
    const Statement& statement = step.statement;
    if (step.has(Role::String)) return;
    if (step.used.empty() || !step.knowsAll()) return;
    const auto isKnown = [&step](std::size_t image) {
        return step.images[image].range.has_value();
    };
    if (!std::ranges::all_of(step.used, isKnown)) return;
    for (const Part& part : statement.all(Role::Area)) {
        const Area area = statement.areaOf(part);
        const auto hasIt = [&](std::size_t image) {
            return isInside(step, area, *step.images[image].range);
        };
        if (std::ranges::any_of(step.used, hasIt)) continue;
        step.findings.report(
            Kind::Outside,
            "the area " + areaText(area) +
                (step.has(Role::MakesImage) ? " has no address of " : " does not lie in ") +
                textOf(step.images, step.used),
            part.text);
    }
}

}  // namespace Strict
