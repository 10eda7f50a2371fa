#include "io/export/hexdump/HexDumpOutFile.hpp"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <span>

namespace Io::Export {

namespace {

constexpr char lowerDigit(std::uint64_t nibble) {
    return "0123456789abcdef"[nibble & 15U];
}

/// The address in at least eight digits, ":" and a blank.
char* writeAddress(char* out, std::uint64_t address) {
    constexpr int bitsOfDigit = 4;
    constexpr int fewestDigits = 8;
    const int bits = static_cast<int>(std::bit_width(address));
    const int digits = std::max(fewestDigits, (bits + bitsOfDigit - 1) / bitsOfDigit);
    for (int digit = digits - 1; digit >= 0; --digit)
        *out++ = lowerDigit(address >> (bitsOfDigit * digit));
    *out++ = ':';
    *out++ = ' ';
    return out;
}

char printable(std::uint8_t byte) {
    const bool isPrintable = byte >= ' ' && byte <= '~';
    return isPrintable ? static_cast<char>(byte) : '.';
}

/// Columns of so many bytes in groups of two, each with a blank after it.
constexpr std::size_t columnsOf(std::size_t bytes) {
    return 2 * bytes + (bytes + 1) / 2;
}

void writeLine(PieceWriter& out, std::uint64_t address, std::span<const std::uint8_t> bytes,
               std::size_t perLine) {
    constexpr std::size_t addressRoom = 18;
    char* const place = out.reserve(addressRoom + columnsOf(perLine) + 2 + bytes.size());
    char* at = writeAddress(place, address);
    char* const text = at + columnsOf(perLine) + 1;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        *at++ = lowerDigit(bytes[i] >> 4U);
        *at++ = lowerDigit(bytes[i]);
        if (i % 2 == 1) *at++ = ' ';
    }
    std::fill(at, text, ' ');
    at = std::ranges::transform(bytes, text, printable).out;
    *at++ = '\n';
    out.commit(at);
}

}  // namespace

void HexDumpOutFile::saveToFile() {
    const std::size_t perLine = style_.bytesPerLine;
    PieceWriter out = startOutput();
    for (const ImageView& image : images_)
        forStretches(image, [&](const ImageView& stretch) {
            std::uint64_t address = stretch.startAddress;
            forEffectiveBytes(stretch.elements, perLine, [&](std::span<const std::uint8_t> bytes) {
                writeLine(out, address, bytes, perLine);
                address += bytes.size();
            });
        });
    out.finish();
}

}  // namespace Io::Export
