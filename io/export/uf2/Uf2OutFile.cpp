#include "io/export/uf2/Uf2OutFile.hpp"

#include "facts/Listener.hpp"

namespace Io::Export {

void Uf2OutFile::saveToFile() {
    images_.finish();
    if (images_.end() > addressSpace32) {
        Facts::report(Facts::AddressBeyondFormat{"UF2", fileName_, addressSpace32 - 1});
        return;
    }
    Uf2::Block block{Uf2::familyPresent, 0, Uf2::payloadSize, 0, 0, style_.family};
    block.count = static_cast<std::uint32_t>(images_.size() / Uf2::payloadSize);
    PieceWriter out = startOutput();
    images_.forRanges([&](std::uint64_t address, std::span<const std::uint8_t> bytes) {
        for (; !bytes.empty(); bytes = bytes.subspan(Uf2::payloadSize)) {
            block.address = static_cast<std::uint32_t>(address);
            char* const place = out.reserve(Uf2::blockSize);
            Uf2::writeBlock({reinterpret_cast<std::uint8_t*>(place), Uf2::blockSize}, block,
                            bytes.first(Uf2::payloadSize));
            out.commit(place + Uf2::blockSize);
            address += Uf2::payloadSize;
            ++block.number;
        }
    });
    out.finish();
}

}  // namespace Io::Export
