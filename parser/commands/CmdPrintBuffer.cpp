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
    bufferName_ = std::move(name);
}

bool CmdPrintBuffer::execute(CmdContext& context) {
    return guarded(Facts::Subject::Buffer, bufferName_, Facts::Work::Printed, [&] {
        const Buffer::MemoryBuffer* const buffer = findBuffer(context, bufferName_);
        if (buffer == nullptr) return false;
        Facts::report(
            Facts::BufferPrinted{bufferName_, buffer->getStartAddress(), buffer->getDataLength()});
        if (areas_.empty()) printContent(*buffer);
        for (const Area& area : areas_)
            printContent(buffer->extractMemory(area.start, area.length));
        return true;
    });
}

}  // namespace Parser::WrapperLib
