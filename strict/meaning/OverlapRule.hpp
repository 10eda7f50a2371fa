#pragma once

#include "strict/meaning/Step.hpp"

namespace Strict {

/// `conflict`, and `overlap` where all bytes are equal: images of one file have an address in
/// common. The file would have two records for it, and its reader decides which one counts. The
/// byte of an address that nothing wrote is its filler, unless such addresses are left out. With
/// `-onOverlap` the script decides, and a format without addresses has room for both.
void checkOutputOverlaps(const Step& step);

}  // namespace Strict
