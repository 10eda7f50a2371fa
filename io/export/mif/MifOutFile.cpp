#include "io/export/mif/MifOutFile.hpp"

#include <algorithm>
#include <climits>

#include "facts/Listener.hpp"
#include "io/export/WordText.hpp"
#include "util/Hex.hpp"

namespace Io::Export {

namespace {

void writeLine(PieceWriter& out, std::uint64_t address, std::span<const std::uint8_t> bytes,
               const WordStyle& style) {
    out.append(Util::hexWord(address));
    out.append(" : ");
    char* const place = out.reserve(3 * bytes.size() + 1);
    char* at = writeWords(place, bytes, style);
    at[-1] = ';';
    *at++ = '\n';
    out.commit(at);
}

}  // namespace

std::string MifOutFile::head() const {
    return "WIDTH=" + std::to_string(style_.wordBytes * CHAR_BIT) +
           ";\nDEPTH=" + std::to_string(images_.end() / style_.wordBytes) +
           ";\n\nADDRESS_RADIX=HEX;\nDATA_RADIX=HEX;\n\nCONTENT BEGIN\n";
}

void MifOutFile::saveToFile() {
    images_.finish();
    if (images_.end() > addressSpace32) {
        Facts::report(Facts::AddressBeyondFormat{"MIF", fileName_, addressSpace32 - 1});
        return;
    }
    constexpr std::size_t perLine = 16;
    PieceWriter out = startOutput();
    out.append(head());
    images_.forRanges([&](std::uint64_t address, std::span<const std::uint8_t> bytes) {
        while (!bytes.empty()) {
            const std::size_t count = std::min(perLine, bytes.size());
            writeLine(out, address / style_.wordBytes, bytes.first(count), style_);
            bytes = bytes.subspan(count);
            address += count;
        }
    });
    out.append("END;\n");
    out.finish();
}

}  // namespace Io::Export
