#include "io/export/vmem/VmemOutFile.hpp"

#include <algorithm>
#include <utility>

#include "facts/Listener.hpp"
#include "io/export/WordText.hpp"
#include "util/Hex.hpp"

namespace Io::Export {

namespace {

void writeAddress(PieceWriter& out, std::uint64_t address) {
    out.append("@");
    out.append(Util::hexWord(address));
    out.append("\n");
}

}  // namespace

VmemOutFile::VmemOutFile(std::string path, WordStyle style)
    : TextOutFile(std::move(path)), style_(style), images_(style.wordBytes) {}

void VmemOutFile::saveToFile() {
    images_.finish();
    if (images_.end() > addressSpace32) {
        Facts::report(Facts::AddressBeyondFormat{"VMEM", fileName_, addressSpace32 - 1});
        return;
    }
    constexpr std::size_t perLine = 16;
    const std::size_t width = style_.wordBytes;
    PieceWriter out = startOutput();
    std::uint64_t next = 0;
    bool isFirst = true;
    images_.forRanges([&](std::uint64_t address, std::span<const std::uint8_t> bytes) {
        if (isFirst || address != next) writeAddress(out, address / width);
        isFirst = false;
        next = address + bytes.size();
        while (!bytes.empty()) {
            const std::size_t count = std::min(perLine, bytes.size());
            writeLine(out, bytes.first(count));
            bytes = bytes.subspan(count);
        }
    });
    out.finish();
}

void VmemOutFile::writeLine(PieceWriter& out, std::span<const std::uint8_t> bytes) const {
    char* const place = out.reserve(3 * bytes.size());
    char* const end = writeWords(place, bytes, style_);
    end[-1] = '\n';
    out.commit(end);
}

}  // namespace Io::Export
