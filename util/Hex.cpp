#include "util/Hex.hpp"

#include <array>
#include <cstring>

namespace Util {

namespace {

using DigitPair = std::array<char, 2>;

constexpr std::array<DigitPair, 256> digitPairTable() {
    constexpr const char* digits = "0123456789ABCDEF";
    std::array<DigitPair, 256> table{};
    for (std::size_t byte = 0; byte < table.size(); ++byte)
        table[byte] = {digits[byte >> 4U], digits[byte & 15U]};
    return table;
}

constexpr auto digitPairs = digitPairTable();

}  // namespace

char* writeHex(char* out, std::span<const std::uint8_t> bytes) {
    for (const std::uint8_t byte : bytes) {
        std::memcpy(out, digitPairs[byte].data(), 2);
        out += 2;
    }
    return out;
}

void appendHex(std::string& text, std::span<const std::uint8_t> bytes) {
    const std::size_t length = text.size();
    text.resize(length + 2 * bytes.size());
    writeHex(text.data() + length, bytes);
}

std::string hexWord(std::uint64_t number) {
    const std::array bytes{
        static_cast<std::uint8_t>(number >> 24U), static_cast<std::uint8_t>(number >> 16U),
        static_cast<std::uint8_t>(number >> 8U), static_cast<std::uint8_t>(number)};
    std::string text;
    appendHex(text, bytes);
    return text;
}

}  // namespace Util
