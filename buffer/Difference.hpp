#pragma once

#include "buffer/MemoryBuffer.hpp"

namespace Buffer {

/// The ranges of addresses, ascending and as long as possible, at which two images differ: one of
/// them has a written byte there and the other has another one or none. Fillers do not count.
AreaList differences(const MemoryBuffer& left, const MemoryBuffer& right);

}  // namespace Buffer
