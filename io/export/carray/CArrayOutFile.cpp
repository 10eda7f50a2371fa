#include "io/export/carray/CArrayOutFile.hpp"

#include <algorithm>
#include <array>
#include <climits>
#include <string_view>
#include <vector>

#include "io/export/WordText.hpp"
#include "util/Hex.hpp"

namespace Io::Export {

namespace {

constexpr std::size_t addressDigits = 8;  ///< at least

/// Writes elements " 0x00," of whole words.
void writeDigits(PieceWriter& out, std::span<const std::uint8_t> bytes, const WordStyle& element) {
    constexpr std::string_view before = " 0x";
    const std::size_t width = element.wordBytes;
    char* const place =
        out.reserve(bytes.size() / width * (before.size() + 2 * width + 1) + sizeof(' '));
    char* at = place;
    for (; !bytes.empty(); bytes = bytes.subspan(width)) {
        at = std::ranges::copy(before, at).out;
        at = writeWords(at, bytes.first(width), element);
        at[-1] = ',';
    }
    out.commit(at);
}

}  // namespace

void CArrayOutFile::saveToFile() {
    // Beforehand: memory that runs out later would leave half a file.
    std::vector<std::string> heads;
    for (const ImageView& image : images_) heads.push_back(headOf(heads.size() + 1, image));
    PieceWriter out = startOutput();
    const std::string& guard = style_.includeGuard;
    if (!guard.empty()) {
        out.append("#ifndef ");
        out.append(guard);
        out.append("\n#define ");
        out.append(guard);
        out.append("\n\n");
    }
    out.append("#include <stdint.h>\n");
    auto head = heads.begin();
    for (const ImageView& image : images_) {
        out.append(*head++);
        if (!image.elements.empty()) writeElements(out, image);
    }
    if (!guard.empty()) out.append("\n#endif\n");
    out.finish();
}

/// The lines in front of the elements of image `number`, counted from 1.
std::string CArrayOutFile::headOf(std::size_t number, const ImageView& image) const {
    const std::string name = number == 1 ? style_.name : style_.name + std::to_string(number);
    const std::string size = std::to_string(image.elements.size());
    std::string head = "\n#define " + name + "_address 0x" +
                       Util::hexNumber(image.startAddress, addressDigits) + "u\n";
    head += "#define " + name + "_length " + size + "u\n";
    if (image.elements.empty()) return head;
    const std::size_t width = style_.element.wordBytes;
    const std::size_t count = (image.elements.size() + width - 1) / width;
    head += "static const uint" + std::to_string(CHAR_BIT * width) + "_t " + name + "[" +
            std::to_string(count) + "] = {\n";
    return head;
}

void CArrayOutFile::writeElements(PieceWriter& out, const ImageView& image) const {
    const std::size_t width = style_.element.wordBytes;
    const std::size_t perLine = style_.elementsPerLine * width;
    std::size_t inLine = 0;
    constexpr std::size_t pieceSize = 4096;
    const auto write = [&](std::span<const std::uint8_t> bytes) {
        while (!bytes.empty()) {
            if (inLine == 0) out.append("   ");
            const std::size_t room = perLine == 0 ? bytes.size() : perLine - inLine;
            const std::size_t count = std::min(room, bytes.size());
            writeDigits(out, bytes.first(count), style_.element);
            bytes = bytes.subspan(count);
            inLine += count;
            if (inLine != perLine) continue;
            out.append("\n");
            inLine = 0;
        }
    };
    forEffectiveBytes(image.elements, pieceSize, [&](std::span<const std::uint8_t> bytes) {
        const std::size_t rest = bytes.size() % width;
        write(bytes.first(bytes.size() - rest));
        if (rest == 0) return;
        std::array<std::uint8_t, sizeof(std::uint64_t)> last{};
        std::ranges::copy(bytes.last(rest), last.begin());
        write(std::span(last).first(width));
    });
    out.append(inLine == 0 ? "};\n" : "\n};\n");
}

}  // namespace Io::Export
