#pragma once

#include <cstdint>

namespace Buffer {

/// What an image knows of one address.
struct MemoryElement {
    std::uint8_t value = 0;     ///< the byte written here; meaningful while `hasValue` is not 0
    std::uint8_t filler = 0;    ///< the byte this address reads as while nothing was written
    std::uint8_t hasValue = 0;  ///< 1 once a byte was written here

    /// The byte that a reader of the image sees here.
    std::uint8_t effectiveByte() const { return hasValue != 0 ? value : filler; }

    bool operator==(const MemoryElement&) const = default;
};

}  // namespace Buffer
