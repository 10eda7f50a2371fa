#include "inspect/Words.hpp"

#include <cstddef>

#include "util/Hex.hpp"

namespace Inspect {

using Buffer::Area;

std::string addressText(std::uint64_t address) {
    constexpr std::size_t fewestDigits = 8;
    return "0x" + Util::hexNumber(address, fewestDigits);
}

std::string hexText(std::uint64_t number) {
    return "0x" + Util::hexNumber(number, 1);
}

std::string rangeText(const Area& area) {
    if (area.length == 1) return addressText(area.start);
    return addressText(area.start) + " to " + addressText(area.end() - 1);
}

std::string addressesText(const Area& area) {
    if (area.length == 0) return "no addresses";
    return (area.length == 1 ? "the address " : "the addresses ") + rangeText(area);
}

std::string grouped(std::uint64_t number) {
    const std::string digits = std::to_string(number);
    std::string text;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i != 0 && (digits.size() - i) % 3 == 0) text += ',';
        text += digits[i];
    }
    return text;
}

std::string countText(std::uint64_t count, const char* noun) {
    return grouped(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string linesText(std::uint64_t first, std::uint64_t last) {
    if (first == last) return "line " + grouped(first);
    return "lines " + grouped(first) + " to " + grouped(last);
}

std::string sizeText(std::uint64_t bytes) {
    constexpr std::uint64_t kibi = 1024;
    constexpr std::uint64_t mebi = kibi * kibi;
    if (bytes < kibi) return countText(bytes, "byte");
    const std::uint64_t unit = bytes < mebi ? kibi : mebi;
    const std::uint64_t tenths = (bytes / unit) * 10 + (bytes % unit) * 10 / unit;
    return grouped(tenths / 10) + "." + std::to_string(tenths % 10) +
           (unit == kibi ? " KiB" : " MiB");
}

}  // namespace Inspect
