#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "buffer/MemoryBuffer.hpp"

namespace Io::Export {

/// The effective bytes of images one behind the other, for the formats without addresses.
class ConcatenatedBytes {
public:
    /// Appends the bytes of `buffer`. Refused with a report, as a whole, if there would be more
    /// than 0xFFFFFFFF bytes then.
    ///
    /// @param writerName  opens the report
    void append(const Buffer::MemoryBuffer& buffer, std::string_view writerName);

    std::span<const std::uint8_t> view() const { return outputBytes; }

private:
    std::vector<std::uint8_t> outputBytes;
};

}  // namespace Io::Export
