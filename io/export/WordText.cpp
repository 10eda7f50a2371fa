#include "io/export/WordText.hpp"

#include "util/Hex.hpp"

namespace Io::Export {

char* writeWords(char* out, std::span<const std::uint8_t> bytes, const WordStyle& style) {
    const std::size_t width = style.wordBytes;
    for (std::size_t word = 0; word < bytes.size(); word += width) {
        for (std::size_t i = 0; i < width; ++i)
            out = Util::writeHex(out, bytes[word + (style.isLittleEndian ? width - 1 - i : i)]);
        *out++ = ' ';
    }
    return out;
}

}  // namespace Io::Export
