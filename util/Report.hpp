#pragma once

#include <iostream>

namespace Util {

/// Prints `parts` as one line on standard output and flushes it.
///
/// Manipulators pass through: std::hex stays set on std::cout for the rest of the process, as
/// users of the messages know it, so nothing here saves or restores the stream's flags.
template <class... Parts>
void reportLine(const Parts&... parts) {
    (std::cout << ... << parts) << std::endl;
}

}  // namespace Util
