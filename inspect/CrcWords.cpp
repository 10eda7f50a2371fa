#include "inspect/CrcWords.hpp"

#include <array>
#include <cstddef>

#include "util/Hex.hpp"

namespace Inspect {

std::string crcNumberText(Util::Crc::CrcNumber number, int width) {
    constexpr int bitsOfDigit = 4;
    std::string text = "0x";
    for (int shift = (width - 1) / bitsOfDigit * bitsOfDigit; shift >= 0; shift -= bitsOfDigit)
        text += Util::hexDigit(static_cast<unsigned>(number >> shift) & 15U);
    return text;
}

std::string crcText(const Util::Crc::CrcParameters& crc) {
    const auto flag = [](bool isSet) { return isSet ? "true" : "false"; };
    return "width " + std::to_string(crc.width) + ", poly " +
           crcNumberText(crc.polynomial, crc.width) + ", init " +
           crcNumberText(crc.initial, crc.width) + ", refin " + flag(crc.isInputReflected) +
           ", refout " + flag(crc.isOutputReflected) + ", xorout " +
           crcNumberText(crc.finalXor, crc.width);
}

const char* alignmentWord(Util::Crc::CrcAlignment alignment) {
    constexpr std::array words{"Right", "Left", "LeftWithOnes"};
    return words.at(static_cast<std::size_t>(alignment));
}

Util::Crc::CrcNumber numberOf(std::span<const std::uint8_t> bytes) {
    constexpr int bitsOfByte = 8;
    Util::Crc::CrcNumber number = 0;
    for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte)
        number = number << bitsOfByte | *byte;
    return number;
}

std::string valueText(std::span<const std::uint8_t> bytes) {
    std::string text = "0x";
    for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte) text += Util::hexByte(*byte);
    return text;
}

}  // namespace Inspect
