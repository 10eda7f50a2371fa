#include "util/crc/CrcParameters.hpp"

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>

#include "util/crc/CrcFolding.hpp"
#include "util/crc/CrcRegister.hpp"

namespace Util::Crc {

namespace {

// A polynomial times a power of x leaves the remainder times that power, so one register of 64 bits
// serves every width up to its own: the CRC is in its upper bits, or in its lower ones if it shifts
// right. Wider CRCs are rare and take a register of their own, without folding.

constexpr int registerWidth = widthOf<std::uint64_t>;

/// The lowest `width` bits of `value` in reverse order.
std::uint64_t reflected(std::uint64_t value, int width) {
    return reflect(value) >> (registerWidth - width);
}

CrcNumber wideReflected(CrcNumber value, int width) {
    CrcNumber mirrored = 0;
    for (int bit = 0; bit < width; ++bit) mirrored |= (value >> bit & 1) << (width - 1 - bit);
    return mirrored;
}

using Bytes = std::span<const std::uint8_t>;

/// The register after `data`, not reflected.
std::uint64_t forwardRegister(const CrcParameters& crc, Bytes data) {
    const int unused = registerWidth - crc.width;
    const std::uint64_t polynomial = static_cast<std::uint64_t>(crc.polynomial) << unused;
    const auto table = forwardTable<8>(polynomial);
    const auto rule = [&](std::uint64_t value, Bytes bytes) {
        return updateForward(value, bytes, table);
    };
    const std::uint64_t initial = static_cast<std::uint64_t>(crc.initial) << unused;
    const Folding folding = forwardFolding(polynomial);
    return updateFolded(initial, data, folding, reversedBytes(initial), rule) >> unused;
}

/// The register after `data`, reflected.
std::uint64_t reflectedRegister(const CrcParameters& crc, Bytes data) {
    const auto polynomial = reflected(static_cast<std::uint64_t>(crc.polynomial), crc.width);
    const auto table = reflectedTable<8>(polynomial);
    const auto rule = [&](std::uint64_t value, Bytes bytes) {
        return updateReflected(value, bytes, table);
    };
    const auto initial = reflected(static_cast<std::uint64_t>(crc.initial), crc.width);
    return updateFolded(initial, data, reflectedFolding(polynomial), initial, rule);
}

/// The register of at most 64 bits after `data`, reflected as the output is.
std::uint64_t narrowRegister(const CrcParameters& crc, Bytes data) {
    const std::uint64_t value =
        crc.isInputReflected ? reflectedRegister(crc, data) : forwardRegister(crc, data);
    return crc.isInputReflected == crc.isOutputReflected ? value : reflected(value, crc.width);
}

/// What a byte in the top of a wide register leaves there, after `k` more bytes for table `k`:
/// eight bytes at a time are "slicing by 8", M. Kounavis and F. Berry, "Novel table lookup-based
/// algorithms for high-performance CRC generation", IEEE Transactions on Computers 57 (2008).
using WideTables = std::array<std::array<CrcNumber, UCHAR_MAX + 1>, sizeof(std::uint64_t)>;

WideTables wideTables(CrcNumber polynomial) {
    WideTables tables{};
    auto& first = tables.front();
    for (std::size_t i = 0; i < first.size(); ++i) {
        first[i] = CrcNumber{i} << (widestCrc - CHAR_BIT);
        for (int bit = 0; bit < CHAR_BIT; ++bit)
            first[i] = first[i] << 1 ^ ((first[i] >> (widestCrc - 1)) != 0 ? polynomial : 0);
    }
    for (std::size_t k = 1; k < tables.size(); ++k)
        for (std::size_t i = 0; i < first.size(); ++i) {
            const CrcNumber before = tables[k - 1][i];
            const auto top = static_cast<std::size_t>(before >> (widestCrc - CHAR_BIT));
            tables[k][i] = before << CHAR_BIT ^ first[top];
        }
    return tables;
}

/// Eight bytes as a number, the first one highest.
std::uint64_t eightBytes(const std::uint8_t* bytes) {
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < sizeof word; ++i) word = word << CHAR_BIT | bytes[i];
    return word;
}

/// Reverses the bits of each byte.
std::uint64_t mirroredBytes(std::uint64_t word) {
    const auto swapped = [&word](std::uint64_t lower, unsigned distance) {
        return (word & lower) << distance | (word >> distance & lower);
    };
    word = swapped(0x0F0F0F0F0F0F0F0F, 4);
    word = swapped(0x3333333333333333, 2);
    return swapped(0x5555555555555555, 1);
}

/// The same for more than 64 bits: a register that shifts left over the bits of each byte in their
/// order.
CrcNumber wideRegister(const CrcParameters& crc, Bytes data) {
    const int unused = widestCrc - crc.width;
    const WideTables tables = wideTables(crc.polynomial << unused);
    CrcNumber value = crc.initial << unused;
    for (; data.size() >= tables.size(); data = data.subspan(tables.size())) {
        const std::uint64_t word = eightBytes(data.data());
        std::uint64_t top = static_cast<std::uint64_t>(value >> registerWidth) ^
                            (crc.isInputReflected ? mirroredBytes(word) : word);
        value <<= registerWidth;
        for (const auto& table : tables) {
            value ^= table[top & UCHAR_MAX];
            top >>= CHAR_BIT;
        }
    }
    for (const std::uint8_t byte : data) {
        const std::uint8_t ordered = crc.isInputReflected ? reflect(byte) : byte;
        const auto top = static_cast<std::uint8_t>(value >> (widestCrc - CHAR_BIT));
        value = value << CHAR_BIT ^ tables.front()[top ^ ordered];
    }
    value >>= unused;
    return crc.isOutputReflected ? wideReflected(value, crc.width) : value;
}

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

ByteList computeCrc(const CrcParameters& parameters, Bytes data) {
    CrcNumber value = parameters.width <= registerWidth ? narrowRegister(parameters, data)
                                                        : wideRegister(parameters, data);
    value ^= parameters.finalXor;
    ByteList bytes(static_cast<std::size_t>((parameters.width + CHAR_BIT - 1) / CHAR_BIT));
    for (std::uint8_t& byte : bytes) {
        byte = static_cast<std::uint8_t>(value);
        value >>= CHAR_BIT;
    }
    return bytes;
}

ByteList aligned(const ByteList& crc, int width, CrcAlignment alignment) {
    const int spareBits = static_cast<int>(crc.size()) * CHAR_BIT - width;
    if (alignment == CrcAlignment::Right || spareBits == 0) return crc;
    ByteList moved;
    unsigned carry = alignment == CrcAlignment::LeftWithOnes ? (1U << spareBits) - 1 : 0;
    for (const std::uint8_t byte : crc) {
        const unsigned bits = static_cast<unsigned>(byte) << spareBits | carry;
        moved.push_back(static_cast<std::uint8_t>(bits));
        carry = bits >> CHAR_BIT;
    }
    return moved;
}

std::vector<std::string_view> aliasesOf(const CatalogueEntry& entry) {
    constexpr std::string_view separator = ", ";
    std::vector<std::string_view> names;
    for (std::string_view rest = entry.aliases; !rest.empty();) {
        const std::size_t end = std::min(rest.find(separator), rest.size());
        names.push_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + separator.size(), rest.size()));
    }
    return names;
}

const CatalogueEntry* findInCatalogue(std::string_view name) {
    const auto rows = catalogue();
    const auto row = std::ranges::find_if(rows, [name](const CatalogueEntry& entry) {
        return std::ranges::equal(entry.name, name, {}, lower, lower);
    });
    return row == rows.end() ? nullptr : &*row;
}

}  // namespace Util::Crc
