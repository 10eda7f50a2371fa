#pragma once

#include "buffer/MemoryBuffer.hpp"

namespace Buffer {

/// Where two images differ: ranges of addresses, ascending and as long as possible. Fillers do not
/// count.
struct Differences {
    AreaList changed;    ///< both have a written byte, and not the same
    AreaList onlyLeft;   ///< only the left image has a written byte
    AreaList onlyRight;  ///< only the right image has one
};

/// Appends where the images differ in [`start`, `start + length`), which each of them has as a
/// whole or not at all. An absent image, a null pointer, has no byte. Ranges are appended in
/// ascending order, and one that begins where the last one ends extends it.
void appendDifferences(const MemoryBuffer* left, const MemoryBuffer* right, const Area& range,
                       Differences& found);

/// The ranges of addresses, ascending and as long as possible, at which two images differ: one of
/// them has a written byte there and the other has another one or none. Fillers do not count.
AreaList differences(const MemoryBuffer& left, const MemoryBuffer& right);

/// The ranges, ascending and as long as possible, at which the effective bytes of two views of
/// equal size differ. The first element has the address `start`.
AreaList effectiveDifferences(ElementView one, ElementView other, std::uint64_t start);

}  // namespace Buffer
