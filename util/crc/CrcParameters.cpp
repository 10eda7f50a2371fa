#include "util/crc/CrcParameters.hpp"

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>

#include "util/crc/Crc32Instructions.hpp"
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
    const bool hasInstructions = crc.width == widthOf<std::uint32_t> &&
                                 polynomial == crc32ReflectedPolynomial && hasCrc32Instructions();
    const auto rule = [&](std::uint64_t value, Bytes bytes) {
        return hasInstructions ? updateByInstructions(static_cast<std::uint32_t>(value), bytes)
                               : updateReflected(value, bytes, table);
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

/// What eight bytes do to a register of 128 bits that shifts left: entry i of table k is the
/// register after i, in its top byte, and k bytes of 0 have been shifted out.
using WideTables = std::array<std::array<CrcNumber, UCHAR_MAX + 1>, sizeof(std::uint64_t)>;

WideTables wideTables(CrcNumber polynomial) {
    WideTables tables{};
    CrcNumber power = polynomial;  // x^128, modulo the polynomial
    for (auto& table : tables) {
        for (std::size_t bit = 1; bit < table.size(); bit <<= 1) {
            table[bit] = power;
            power = power << 1 ^ ((power >> (widestCrc - 1)) != 0 ? polynomial : 0);
        }
        // Every other entry is the sum of those of its bits.
        for (std::size_t i = 1; i < table.size(); ++i) {
            const std::size_t withoutLowest = i & (i - 1);
            table[i] = table[withoutLowest] ^ table[i - withoutLowest];
        }
    }
    return tables;
}

/// The bytes of `word`, each with its bits in reverse order.
std::uint64_t withReflectedBytes(std::uint64_t word) {
    constexpr std::uint64_t bits = 0x5555555555555555;
    constexpr std::uint64_t pairs = 0x3333333333333333;
    constexpr std::uint64_t nibbles = 0x0F0F0F0F0F0F0F0F;
    word = (word >> 1 & bits) | (word & bits) << 1;
    word = (word >> 2 & pairs) | (word & pairs) << 2;
    return (word >> 4 & nibbles) | (word & nibbles) << 4;
}

/// The same for more than 64 bits: a register that shifts left over the bits of each byte in their
/// order, and takes eight bytes at once.
CrcNumber wideRegister(const CrcParameters& crc, Bytes data) {
    const int unused = widestCrc - crc.width;
    const WideTables tables = wideTables(crc.polynomial << unused);
    const auto wordAt = [&crc](Bytes bytes) {
        std::uint64_t word = 0;
        for (const std::uint8_t byte : bytes) word = word << CHAR_BIT | byte;
        return crc.isInputReflected ? withReflectedBytes(word) : word;
    };
    CrcNumber value = crc.initial << unused;
    for (; data.size() >= tables.size(); data = data.subspan(tables.size())) {
        const auto top = static_cast<std::uint64_t>(value >> registerWidth) ^
                         wordAt(data.first<sizeof(std::uint64_t)>());
        value <<= registerWidth;
        for (std::size_t k = 0; k < tables.size(); ++k)
            value ^= tables[k][top >> (CHAR_BIT * k) & UCHAR_MAX];
    }
    for (const std::uint8_t byte : data) {
        const auto top = static_cast<std::uint8_t>(value >> (widestCrc - CHAR_BIT));
        const auto ordered = static_cast<std::uint8_t>(wordAt({&byte, 1}));
        value = value << CHAR_BIT ^ tables[0][top ^ ordered];
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
