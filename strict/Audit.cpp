#include "strict/Audit.hpp"

#include <algorithm>
#include <string>
#include <vector>

#include "inspect/Words.hpp"
#include "parser/commands/CmdFillBuffer.hpp"
#include "parser/commands/CmdNewValue.hpp"
#include "parser/commands/CmdPrintBuffer.hpp"

namespace Strict {

namespace {

using namespace Parser::WrapperLib;

/// "(0x00000100 to 0x000001FF)"
std::string addresses(const Area& image) {
    if (image.length == 0) return "(no addresses)";
    return std::string("(").append(Inspect::rangeText(image)).append(")");
}

void checkAreas(const AreaList& areas, const std::vector<std::string>& names,
                const CmdContext& context, RunListener& listener) {
    std::string images;
    for (const std::string& name : names) {
        const auto image = context.buffers.find(name);
        images += (images.empty() ? "" : " or ") + name;
        if (image != context.buffers.end())
            images.append(1, ' ').append(addresses(image->second.getArea()));
    }
    for (const Area& area : areas) {
        const auto holds = [&](const std::string& name) {
            const auto image = context.buffers.find(name);
            // A missing image is reported on its own.
            return image == context.buffers.end() || image->second.getArea().contains(area);
        };
        if (!std::ranges::any_of(names, holds))
            listener.reportOutside(area.start, area.length, images);
    }
}

}  // namespace

void auditBefore(const CmdApi& statement, const CmdContext& context, const Provenance& provenance,
                 RunListener& listener) {
    if (const auto* fill = dynamic_cast<const CmdFillBuffer*>(&statement)) {
        // A string does not look at the length of its area.
        if (fill->fillKind() != FillKind::FillString)
            checkAreas(fill->areas(), {fill->bufferName()}, context, listener);
    } else if (const auto* value = dynamic_cast<const CmdNewValue*>(&statement)) {
        checkAreas(value->areas(), value->fromBuffers(), context, listener);
        provenance.checkCovered(*value, context);
    } else if (const auto* print = dynamic_cast<const CmdPrintBuffer*>(&statement)) {
        checkAreas(print->areas(), {print->bufferName()}, context, listener);
    }
}

}  // namespace Strict
