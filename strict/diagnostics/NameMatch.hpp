#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Finds what somebody means who types the name of an algorithm, a device or a format as it is
/// known elsewhere: crc32, CRC-16/CCITT-FALSE, sha-256, RP2350.
///
/// Such names differ little where the things differ much: SHA-384 and SHA3-384, CRC-8/GSM-A and
/// CRC-8/GSM-B. So the numbers of a name are never corrected, and what fits several things is
/// returned as all of them instead of one guess.
namespace Strict {

/// A name and the thing that has it, as an index of the caller's.
struct KnownName {
    std::string name;
    std::size_t thing;
};

/// How far a name may be from what was typed.
enum class Likeness : unsigned char {
    Whole,    ///< the same but for case and for the signs between its parts
    Begun,    ///< or what follows the slash of a name, or the first parts of a name
    Misspelt  ///< or with a few letters wrong, missing or too many, at most one of each four
              ///< after the first word
};

/// The things that `typed` may name, in the order of `known`, each once; empty if there is none. Of
/// the ways to be like a name, the nearest that finds anything decides.
std::vector<std::size_t> thingsMeant(std::string_view typed, std::span<const KnownName> known,
                                     Likeness likeness);

}  // namespace Strict
