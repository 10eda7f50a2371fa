#include "io/export/carray/CArrayOutFile.hpp"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

#include "util/Hex.hpp"

namespace Io::Export {

namespace {

constexpr std::string_view element = " 0x00,";
constexpr std::size_t digitsAt = 3;
constexpr std::size_t addressDigits = 8;  ///< at least

void writeDigits(PieceWriter& out, std::span<const std::uint8_t> bytes) {
    char* const place = out.reserve(bytes.size() * element.size());
    char* at = place;
    for (const std::uint8_t byte : bytes) {
        std::ranges::copy(element, at);
        Util::writeHex(at + digitsAt, byte);
        at += element.size();
    }
    out.commit(at);
}

}  // namespace

void CArrayOutFile::saveToFile() {
    // Beforehand: memory that runs out later would leave half a file.
    std::vector<std::string> heads;
    for (const ImageView& image : images_) heads.push_back(headOf(heads.size() + 1, image));
    PieceWriter out = startOutput();
    out.append("#include <stdint.h>\n");
    auto head = heads.begin();
    for (const ImageView& image : images_) {
        out.append(*head++);
        if (!image.elements.empty()) writeElements(out, image);
    }
    out.finish();
}

/// The lines in front of the elements of image `number`, counted from 1.
std::string CArrayOutFile::headOf(std::size_t number, const ImageView& image) const {
    const std::string name = number == 1 ? style_.name : style_.name + std::to_string(number);
    const std::string size = std::to_string(image.elements.size());
    std::string head = "\n#define " + name + "_address 0x" +
                       Util::hexNumber(image.startAddress, addressDigits) + "u\n";
    head += "#define " + name + "_length " + size + "u\n";
    if (!image.elements.empty()) head += "static const uint8_t " + name + "[" + size + "] = {\n";
    return head;
}

void CArrayOutFile::writeElements(PieceWriter& out, const ImageView& image) const {
    const std::size_t perLine = style_.elementsPerLine;
    std::size_t inLine = 0;
    constexpr std::size_t pieceSize = 4096;
    forEffectiveBytes(image.elements, pieceSize, [&](std::span<const std::uint8_t> bytes) {
        while (!bytes.empty()) {
            if (inLine == 0) out.append("   ");
            const std::size_t room = perLine == 0 ? bytes.size() : perLine - inLine;
            const std::size_t count = std::min(room, bytes.size());
            writeDigits(out, bytes.first(count));
            bytes = bytes.subspan(count);
            inLine += count;
            if (inLine != perLine) continue;
            out.append("\n");
            inLine = 0;
        }
    });
    out.append(inLine == 0 ? "};\n" : "\n};\n");
}

}  // namespace Io::Export
