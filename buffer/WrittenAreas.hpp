#pragma once

#include "buffer/MemoryBuffer.hpp"

namespace Buffer {

/// The ranges of written addresses of an image, ascending and as long as possible.
AreaList writtenAreas(const MemoryBuffer& image);

}  // namespace Buffer
