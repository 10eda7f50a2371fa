#include "io/export/titxt/TiTxtOutFile.hpp"

#include <algorithm>
#include <array>
#include <string_view>

#include "facts/Listener.hpp"
#include "util/Hex.hpp"

namespace Io::Export {

namespace {

/// "@" and the address in upper-case digits, at least four.
void writeAddress(PieceWriter& out, std::uint64_t address) {
    constexpr std::size_t fewestDigits = 4;
    out.append("@");
    out.append(Util::hexNumber(address, fewestDigits));
    out.append("\n");
}

void writeLine(PieceWriter& out, std::span<const std::uint8_t> bytes) {
    char* const place = out.reserve(3 * bytes.size());
    char* at = place;
    for (const std::uint8_t byte : bytes) {
        at = Util::writeHex(at, byte);
        *at++ = ' ';
    }
    at[-1] = '\n';
    out.commit(at);
}

}  // namespace

void TiTxtOutFile::insert(const ImageView& image) {
    images_.push_back(image);
    forStretches(image, [this](const ImageView& stretch) {
        const std::uint64_t end = stretch.startAddress + stretch.elements.size();
        isBeyond_ = isBeyond_ || end / style_.addressUnit > addressSpace32;
    });
}

void TiTxtOutFile::saveToFile() {
    if (isBeyond_) {
        Facts::report(Facts::AddressBeyondFormat{"TI-TXT", fileName_, addressSpace32 - 1});
        return;
    }
    constexpr std::size_t perLine = 16;
    PieceWriter out = startOutput();
    for (const ImageView& image : images_)
        forStretches(image, [&](const ImageView& stretch) {
            if (stretch.elements.empty()) return;
            writeAddress(out, stretch.startAddress / style_.addressUnit);
            forEffectiveBytes(stretch.elements, perLine,
                              [&](std::span<const std::uint8_t> bytes) { writeLine(out, bytes); });
        });
    out.append("q\n");
    out.finish();
}

}  // namespace Io::Export
