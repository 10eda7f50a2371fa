#include "strict/Audit.hpp"

#include <algorithm>
#include <string>
#include <vector>

#include "parser/commands/CmdFillBuffer.hpp"
#include "parser/commands/CmdNewBuffer.hpp"
#include "parser/commands/CmdNewValue.hpp"
#include "parser/commands/CmdPrintBuffer.hpp"

namespace Strict {

namespace {

using namespace Parser::WrapperLib;

void checkAreas(const AreaList& areas, const std::vector<std::string>& names,
                const CmdContext& context, RunListener& listener) {
    std::string images;
    for (const std::string& name : names) images += (images.empty() ? "" : " or ") + name;
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

bool hasData(const Buffer::MemoryBuffer& image) {
    const Buffer::ElementView elements = image.viewElements();
    for (std::size_t at = 0; at < elements.size(); at += Buffer::WrittenBits::perWord) {
        const std::size_t count = std::min(Buffer::WrittenBits::perWord, elements.size() - at);
        if (elements.written(at, count) != 0) return true;
    }
    return false;
}

}  // namespace

void auditBefore(const CmdApi& statement, const CmdContext& context, RunListener& listener) {
    if (const auto* fill = dynamic_cast<const CmdFillBuffer*>(&statement)) {
        // A string does not look at the length of its area.
        if (fill->fillKind() != FillKind::FillString)
            checkAreas(fill->areas(), {fill->bufferName()}, context, listener);
    } else if (const auto* value = dynamic_cast<const CmdNewValue*>(&statement)) {
        checkAreas(value->areas(), value->fromBuffers(), context, listener);
    } else if (const auto* print = dynamic_cast<const CmdPrintBuffer*>(&statement)) {
        checkAreas(print->areas(), {print->bufferName()}, context, listener);
    }
}

void auditAfter(const CmdApi& statement, const CmdContext& context, RunListener& listener) {
    const auto* const made = dynamic_cast<const CmdNewBuffer*>(&statement);
    if (made == nullptr || made->sourceKind() != BufferSourceKind::SourceFile) return;
    const auto image = context.buffers.find(made->bufferName());
    if (image == context.buffers.end() || hasData(image->second)) return;
    listener.report("empty-image", "the image " + made->bufferName() + " has no data of the file",
                    {"SetFileAsSource -> ", "SetRawFileAsSource -> ", "SetElfFileAsSource -> ",
                     "SetUf2FileAsSource -> ", "SetTiTxtFileAsSource -> "});
}

}  // namespace Strict
