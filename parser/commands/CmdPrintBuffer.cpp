#include "parser/commands/CmdPrintBuffer.hpp"

#include <utility>

#include "parser/commands/Conventions.hpp"

namespace Parser::WrapperLib {

namespace {

void printContent(const Buffer::MemoryBuffer& block) {
    const GatheredBytes bytes({block.viewElements()});
    Facts::report(Facts::ContentPrinted{block.getStartAddress(), bytes.view()});
}

}  // namespace

void CmdPrintBuffer::setBufferName(std::string name) {
    bufferName = std::move(name);
}

bool CmdPrintBuffer::execute(CmdContext& context) {
    return guarded(Facts::Subject::Buffer, bufferName, Facts::Work::Printed, [&] {
        const Buffer::MemoryBuffer* const buffer = findBuffer(context, bufferName);
        if (buffer == nullptr) return false;
        Facts::report(
            Facts::BufferPrinted{bufferName, buffer->getStartAddress(), buffer->getDataLength()});
        if (areas.empty()) printContent(*buffer);
        for (const Area& area : areas) printContent(buffer->extractMemory(area.start, area.length));
        return true;
    });
}

}  // namespace Parser::WrapperLib
