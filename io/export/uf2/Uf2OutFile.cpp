#include "io/export/uf2/Uf2OutFile.hpp"

#include <algorithm>

#include "facts/Listener.hpp"

namespace Io::Export {

void Uf2OutFile::insert(const ImageView& image) {
    const std::uint32_t family = style_.families[image.group];
    auto part = std::ranges::find(parts_, family, &Part::family);
    if (part == parts_.end()) part = parts_.insert(part, Part{family});
    part->images.insert(image);
}

void Uf2OutFile::saveToFile() {
    for (Part& part : parts_) {
        part.images.finish();
        if (part.images.end() <= addressSpace32) continue;
        Facts::report(Facts::AddressBeyondFormat{"UF2", fileName_, addressSpace32 - 1});
        return;
    }
    PieceWriter out = startOutput();
    for (const Part& part : parts_) writePart(out, part);
    out.finish();
}

void Uf2OutFile::writePart(PieceWriter& out, const Part& part) {
    Uf2::Block block{Uf2::familyPresent, 0, Uf2::payloadSize, 0, 0, part.family};
    block.count = static_cast<std::uint32_t>(part.images.size() / Uf2::payloadSize);
    part.images.forRanges([&](std::uint64_t address, std::span<const std::uint8_t> bytes) {
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
}

}  // namespace Io::Export
