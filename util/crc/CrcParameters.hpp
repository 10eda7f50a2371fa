#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "util/crc/ByteList.hpp"

/// Polynomial CRCs of any parameters.
namespace Util::Crc {

/// A number as wide as any register. ISO C++ has none of more than 64 bits; GCC and Clang do.
__extension__ using CrcNumber = unsigned __int128;

/// The parameters of a CRC in the notation of the public catalogue, after R. Williams, "A painless
/// guide to CRC error detection algorithms", section 15.
struct CrcParameters {
    int width;               ///< in bits, 1 to `widestCrc`
    CrcNumber polynomial;    ///< without its highest term, not reflected
    CrcNumber initial;       ///< of the register, not reflected
    bool isInputReflected;   ///< each byte enters with its lowest bit first
    bool isOutputReflected;  ///< the register is reflected before the final xor
    CrcNumber finalXor;

    bool operator==(const CrcParameters&) const = default;
};

inline constexpr int widestCrc = 128;

/// True if `value` has no bit beyond the lowest `width`, which is 1 to `widestCrc`.
constexpr bool fits(CrcNumber value, int width) {
    return (value >> (width - 1)) <= 1;
}

/// The CRC of `data`, least significant byte first, in as many bytes as its width needs.
///
/// @param parameters  the width is in its range, and no other parameter has a bit beyond it
ByteList computeCrc(const CrcParameters& parameters, std::span<const std::uint8_t> data);

/// Where the bits of a CRC lie in its bytes if its width is not a multiple of 8.
enum class CrcAlignment : std::uint8_t {
    Right,        ///< the spare bits are the highest ones, and 0
    Left,         ///< the spare bits are the lowest ones, and 0
    LeftWithOnes  ///< the spare bits are the lowest ones, and 1
};

/// A CRC of `width` bits, as `computeCrc` returns it, in another alignment.
ByteList aligned(const ByteList& crc, int width, CrcAlignment alignment);

/// A CRC of the public catalogue.
struct CatalogueEntry {
    std::string_view name;
    CrcParameters parameters;
    std::string_view aliases;  ///< its other names in the catalogue, separated by ", "
};

/// The CRCs of `catalogue.tsv`, in its order.
std::span<const CatalogueEntry> catalogue();

/// The other names of a CRC in the catalogue.
std::vector<std::string_view> aliasesOf(const CatalogueEntry& entry);

/// The CRC of the catalogue called `name`, case ignored, or nullptr.
const CatalogueEntry* findInCatalogue(std::string_view name);

}  // namespace Util::Crc
