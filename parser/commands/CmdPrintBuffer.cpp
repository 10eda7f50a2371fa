#include "parser/commands/CmdPrintBuffer.hpp"

#include <array>
#include <utility>

#include "parser/commands/Conventions.hpp"
#include "util/Hex.hpp"
#include "util/Report.hpp"

namespace Parser::WrapperLib {

namespace {

constexpr std::size_t elementsPerRow = 13;
/// Rows are handed to the stream in pieces of about this many characters.
constexpr std::size_t pieceLength = std::size_t{1} << 16U;

void printContent(const Buffer::MemoryBuffer& block) {
    Util::reportLine("    Content Area (0x", Util::hexWord(block.getStartAddress()), " , 0x",
                     Util::hexWord(block.getDataLength()), ")");
    std::string rows = "     ";
    std::size_t inRow = 0;
    const Buffer::ElementView elements = block.viewElements();
    for (std::size_t i = 0; i < elements.size(); ++i) {
        rows += " 0x000000";
        Util::appendHex(rows, std::array{elements[i].effectiveByte()});
        if (++inRow < elementsPerRow) continue;
        rows += "\n     ";
        inRow = 0;
        if (rows.size() < pieceLength) continue;
        std::cout << rows;
        rows.clear();
    }
    Util::reportLine(rows);
}

}  // namespace

void CmdPrintBuffer::setBufferName(std::string name) {
    bufferName = std::move(name);
}

bool CmdPrintBuffer::execute(CmdContext& context) {
    return guarded("Buffer", bufferName, "printed", [&] {
        const Buffer::MemoryBuffer* const buffer = findBuffer(context, bufferName);
        if (buffer == nullptr) return false;
        Util::reportLine("Buffer : ", bufferName);
        Util::reportLine("  StartAddress: 0x", Util::hexWord(buffer->getStartAddress()));
        Util::reportLine("  DataLength  : 0x", Util::hexWord(buffer->getDataLength()));
        if (areas.empty()) printContent(*buffer);
        for (const Area& area : areas) printContent(buffer->extractMemory(area.start, area.length));
        return true;
    });
}

}  // namespace Parser::WrapperLib
