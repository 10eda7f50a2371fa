#include "util/crc/CrcParameters.hpp"

#include <algorithm>
#include <climits>
#include <cstddef>

#include "util/crc/CrcFolding.hpp"
#include "util/crc/CrcRegister.hpp"

namespace Util::Crc {

namespace {

// A polynomial times a power of x leaves the remainder times that power, so one register of 64 bits
// serves every width: the CRC is in its upper bits, or in its lower ones if it shifts right.

/// The lowest `width` bits of `value` in reverse order.
std::uint64_t reflected(std::uint64_t value, int width) {
    return reflect(value) >> (widestCrc - width);
}

using Bytes = std::span<const std::uint8_t>;

/// The register after `data`, not reflected.
std::uint64_t forwardRegister(const CrcParameters& crc, Bytes data) {
    const int unused = widestCrc - crc.width;
    const std::uint64_t polynomial = crc.polynomial << unused;
    const auto table = forwardTable<8>(polynomial);
    const auto rule = [&](std::uint64_t value, Bytes bytes) {
        return updateForward(value, bytes, table);
    };
    const std::uint64_t initial = crc.initial << unused;
    const Folding folding = forwardFolding(polynomial);
    return updateFolded(initial, data, folding, reversedBytes(initial), rule) >> unused;
}

/// The register after `data`, reflected.
std::uint64_t reflectedRegister(const CrcParameters& crc, Bytes data) {
    const std::uint64_t polynomial = reflected(crc.polynomial, crc.width);
    const auto table = reflectedTable<8>(polynomial);
    const auto rule = [&](std::uint64_t value, Bytes bytes) {
        return updateReflected(value, bytes, table);
    };
    const std::uint64_t initial = reflected(crc.initial, crc.width);
    return updateFolded(initial, data, reflectedFolding(polynomial), initial, rule);
}

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

ByteList computeCrc(const CrcParameters& parameters, Bytes data) {
    std::uint64_t value = parameters.isInputReflected ? reflectedRegister(parameters, data)
                                                      : forwardRegister(parameters, data);
    if (parameters.isInputReflected != parameters.isOutputReflected)
        value = reflected(value, parameters.width);
    value ^= parameters.finalXor;
    ByteList bytes(static_cast<std::size_t>((parameters.width + CHAR_BIT - 1) / CHAR_BIT));
    for (std::uint8_t& byte : bytes) {
        byte = static_cast<std::uint8_t>(value);
        value >>= CHAR_BIT;
    }
    return bytes;
}

const CatalogueEntry* findInCatalogue(std::string_view name) {
    const auto rows = catalogue();
    const auto row = std::ranges::find_if(rows, [name](const CatalogueEntry& entry) {
        return std::ranges::equal(entry.name, name, {}, lower, lower);
    });
    return row == rows.end() ? nullptr : &*row;
}

}  // namespace Util::Crc
