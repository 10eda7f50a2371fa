#include "strict/Audit.hpp"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "inspect/Words.hpp"

namespace Strict {

namespace {

using Buffer::Area;
using Parser::Part;
using Parser::Role;
using Parser::Statement;
using Parser::WrapperLib::CmdContext;

using Images = std::vector<std::pair<std::string, Area>>;

/// The images that a statement works on, as far as there are any: one that is missing is reported
/// on its own.
Images imagesOf(const Statement& statement, const CmdContext& context) {
    Images images;
    for (const Part& part : statement.parts) {
        if (part.role != Role::UsesImage && part.role != Role::ChangesImage) continue;
        const auto image = context.buffers.find(std::string(part.text));
        if (image == context.buffers.end()) return {};
        images.emplace_back(image->first, image->second.getArea());
    }
    return images;
}

/// "@App (0x00000100 to 0x000001FF) or @Boot (no addresses)"
std::string textOf(const Images& images) {
    std::string text;
    for (const auto& [name, area] : images) {
        if (!text.empty()) text += " or ";
        text += name;
        text += " (";
        text += area.length == 0 ? "no addresses" : Inspect::rangeText(area);
        text += ")";
    }
    return text;
}

std::string areaText(const Area& area) {
    std::string text(1, '{');
    text += Inspect::addressText(area.start);
    text += ", ";
    text += Inspect::hexText(area.length);
    text += '}';
    return text;
}

void checkAreas(const Statement& statement, const Images& images, StatementReports& reports) {
    for (const Part& part : statement.all(Role::Area)) {
        const Area area = statement.areaOf(part);
        if (std::ranges::any_of(images,
                                [&](const auto& image) { return image.second.contains(area); }))
            continue;
        reports.report(Kind::Outside,
                       "the area " + areaText(area) + " does not lie in " + textOf(images), part);
    }
}

/// A CRC or hash of whole images that have no addresses.
void checkCovered(const Statement& statement, const Images& images, StatementReports& reports) {
    const auto isEmpty = [](const auto& image) { return image.second.length == 0; };
    if (images.empty() || statement.has(Role::Area) || !std::ranges::all_of(images, isEmpty))
        return;
    reports.report(Kind::EmptyDigest,
                   std::string(statement.has(Role::MakesCrc) ? "the CRC" : "the hash") +
                       " covers no byte: its images have no addresses",
                   {Role::MakesCrc, Role::MakesHash});
}

/// The areas of a new image crop what it is made of, and a string does not look at the length of
/// its area.
bool takesAreasAsTheyAre(const Statement& statement) {
    return !statement.has(Role::MakesImage) && !statement.has(Role::String);
}

}  // namespace

void auditBefore(const Statement& statement, const CmdContext& context,
                 const Provenance& provenance, StatementReports& reports) {
    const Images images = imagesOf(statement, context);
    if (!images.empty() && takesAreasAsTheyAre(statement)) checkAreas(statement, images, reports);
    if (!statement.has(Role::MakesCrc) && !statement.has(Role::MakesHash)) return;
    checkCovered(statement, images, reports);
    provenance.checkCovered(statement, context);
}

}  // namespace Strict
