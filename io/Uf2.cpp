#include "io/Uf2.hpp"

#include <algorithm>
#include <array>

#include "util/Hex.hpp"

namespace Io::Uf2 {

namespace {

constexpr std::uint32_t firstMark = 0x0A324655;
constexpr std::uint32_t secondMark = 0x9E5D5157;
constexpr std::uint32_t lastMark = 0x0AB16F30;
constexpr std::size_t dataAt = 32;
constexpr std::size_t lastMarkAt = blockSize - 4;

/// A word of 32 bits, least significant byte first.
std::uint32_t wordAt(std::span<const std::uint8_t> bytes, std::size_t at) {
    return static_cast<std::uint32_t>(bytes[at]) | static_cast<std::uint32_t>(bytes[at + 1]) << 8U |
           static_cast<std::uint32_t>(bytes[at + 2]) << 16U |
           static_cast<std::uint32_t>(bytes[at + 3]) << 24U;
}

void putWord(std::span<std::uint8_t> bytes, std::size_t at, std::uint32_t word) {
    for (std::size_t i = 0; i < 4; ++i, word >>= 8U)
        bytes[at + i] = static_cast<std::uint8_t>(word);
}

/// utils/uf2families.json of the published format, and families that loaders of newer devices use.
constexpr auto publishedFamilies =
    std::to_array<Family>({{"ATMEGA32", 0x16573617},     {"SAML21", 0x1851780A},
                           {"NRF52", 0x1B57745F},        {"ESP32", 0x1C5F21B0},
                           {"STM32L1", 0x1E1F432D},      {"STM32L0", 0x202E3A91},
                           {"STM32WL", 0x21460FF0},      {"RTL8710B", 0x22E0D6FC},
                           {"LPC55", 0x2ABC77EC},        {"STM32G0", 0x300F5633},
                           {"GD32F350", 0x31D228C6},     {"RTL8720D", 0x3379CFE2},
                           {"STM32L5", 0x04240BDF},      {"STM32G4", 0x4C71240A},
                           {"MIMXRT10XX", 0x4FB2D5BD},   {"XR809", 0x51E903A8},
                           {"STM32F7", 0x53B80F00},      {"SAMD51", 0x55114460},
                           {"STM32F4", 0x57755A57},      {"FX2", 0x5A18069B},
                           {"STM32F2", 0x5D1A0A2E},      {"STM32F1", 0x5EE21072},
                           {"NRF52833", 0x621E937A},     {"STM32F0", 0x647824B6},
                           {"BK7231U", 0x675A40B0},      {"SAMD21", 0x68ED2B88},
                           {"BK7251", 0x6A82CC42},       {"STM32F3", 0x6B846188},
                           {"STM32F407", 0x6D0922FA},    {"STM32H7", 0x6DB66082},
                           {"STM32WB", 0x70D16653},      {"BK7231N", 0x7B3EF230},
                           {"ESP8266", 0x7EAB61ED},      {"KL32L2", 0x7F83E793},
                           {"STM32F407VG", 0x8FB060FE},  {"RTL8710A", 0x9FFFD543},
                           {"NRF52840", 0xADA52840},     {"ESP32S2", 0xBFDD4EEE},
                           {"ESP32S3", 0xC47E5767},      {"ESP32C3", 0xD42BA06C},
                           {"ESP32C2", 0x2B88D29C},      {"ESP32H2", 0x332726F6},
                           {"ESP32C6", 0x540DDF62},      {"ESP32P4", 0x3D308E94},
                           {"ESP32C5", 0xF71C0343},      {"ESP32C61", 0x77D850C4},
                           {"BL602", 0xDE1270B7},        {"RTL8720C", 0xE08F7564},
                           {"RP2040", 0xE48BFF56},       {"RP2XXX_ABSOLUTE", 0xE48BFF57},
                           {"RP2XXX_DATA", 0xE48BFF58},  {"RP2350_ARM_S", 0xE48BFF59},
                           {"RP2350_RISCV", 0xE48BFF5A}, {"RP2350_ARM_NS", 0xE48BFF5B},
                           {"STM32L4", 0x00FF6919},      {"GD32VF103", 0x9AF03E33},
                           {"CSK4", 0x4F6ACE52},         {"CSK6", 0x6E7348A8},
                           {"M0SENSE", 0x11DE784A},      {"MaixPlay-U4", 0x4B684D71},
                           {"RZA1LU", 0x9517422F},       {"STM32F411xE", 0x2DC309C5},
                           {"STM32F411xC", 0x06D1097B},  {"NRF52832xxAA", 0x72721D4E},
                           {"NRF52832xxAB", 0x6F752678}, {"AT32F415", 0xA0C97B8E},
                           {"CH32V", 0x699B62EC},        {"RA4M1", 0x7BE8976D},
                           {"STM32H5", 0x4E8F1C5D},      {"NRF52820", 0x820D9A5F},
                           {"ESP32H21", 0xB6DD00AF},     {"ESP32H4", 0x9E0BAA8A},
                           {"ESP32S31", 0x3101F7C1},     {"MAX32690", 0x7410520A},
                           {"MAX32650", 0xD63F8632},     {"MAX32666", 0xF0C30D71},
                           {"MAX78002", 0x91D3FD18},     {"PY32F071-UVK5-V3", 0x7D7A66EF}});

}  // namespace

std::optional<Block> readBlock(std::span<const std::uint8_t> bytes) {
    if (wordAt(bytes, 0) != firstMark || wordAt(bytes, 4) != secondMark ||
        wordAt(bytes, lastMarkAt) != lastMark)
        return std::nullopt;
    return Block{wordAt(bytes, 8),  wordAt(bytes, 12), wordAt(bytes, 16),
                 wordAt(bytes, 20), wordAt(bytes, 24), wordAt(bytes, 28)};
}

std::span<const std::uint8_t> payloadOf(std::span<const std::uint8_t> bytes, const Block& block) {
    return bytes.subspan(dataAt, block.size);
}

void writeBlock(std::span<std::uint8_t> out, const Block& block,
                std::span<const std::uint8_t> data) {
    putWord(out, 0, firstMark);
    putWord(out, 4, secondMark);
    putWord(out, 8, block.flags);
    putWord(out, 12, block.address);
    putWord(out, 16, block.size);
    putWord(out, 20, block.number);
    putWord(out, 24, block.count);
    putWord(out, 28, block.family);
    const auto rest = out.subspan(dataAt, lastMarkAt - dataAt);
    const auto end = std::ranges::copy(data, rest.begin()).out;
    std::fill(end, rest.end(), std::uint8_t{0});
    putWord(out, lastMarkAt, lastMark);
}

std::span<const Family> families() {
    return publishedFamilies;
}

std::string nameOf(std::uint32_t family) {
    std::string number = "0x" + Util::hexWord(family);
    const auto* const known = std::ranges::find(publishedFamilies, family, &Family::number);
    if (known == publishedFamilies.end()) return number;
    return std::string(known->name) + " (" + number + ")";
}

}  // namespace Io::Uf2
