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
    std::array<std::uint8_t, 4> bytes{};
    for (std::size_t i = bytes.size(); i-- > 0; address >>= 8U)
        bytes[i] = static_cast<std::uint8_t>(address);
    std::string digits;
    Util::appendHex(digits, bytes);
    const std::size_t zeros = std::min(digits.find_first_not_of('0'), digits.size() - fewestDigits);
    out.append("@");
    out.append(std::string_view(digits).substr(zeros));
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
        isBeyond_ = isBeyond_ || stretch.startAddress + stretch.elements.size() > addressSpace32;
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
            writeAddress(out, stretch.startAddress);
            forEffectiveBytes(stretch.elements, perLine,
                              [&](std::span<const std::uint8_t> bytes) { writeLine(out, bytes); });
        });
    out.append("q\n");
    out.finish();
}

}  // namespace Io::Export
