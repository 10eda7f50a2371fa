#pragma once

#include <cstdint>
#include <string>

#include "buffer/Area.hpp"
#include "buffer/MemoryBuffer.hpp"
#include "facts/Facts.hpp"

/// What all readers report in the same way.
namespace Io::Import {

/// The four lines of every reader's `getInformation`, numbers in decimal.
///
/// @param maxAddress  what the last line shows
std::string informationAbout(Facts::InputFormat reader, std::uint64_t dataLength,
                             std::uint64_t minAddress, std::uint64_t maxAddress);

/// Reports that `operation` was asked for the range `requested`, outside `data`.
void reportRange(Facts::InputFormat reader, Facts::ReadOperation operation,
                 const Buffer::Area& requested, const Buffer::Area& data,
                 const std::string& information);

/// A new image. If the image itself is refused, so is the pattern that would have filled it, and
/// both are reported.
Buffer::MemoryBuffer newImage(std::uint64_t startAddress, std::uint64_t dataLength);

}  // namespace Io::Import
