#pragma once

#include "strict/meaning/Step.hpp"

/// Rules about the areas of a statement.
namespace Strict {

/// `empty-area`: an area of length 0 takes, writes and covers nothing, so it is a mistake wherever
/// it is written. A range of 0 and 0 counts as not given, which nobody means by it.
void checkEmptyAreas(const Step& step);

/// `double-area`: addresses that are in two areas of one list count twice in a CRC or hash, and are
/// written twice otherwise. Areas that only touch are sound.
void checkDoubleAreas(const Step& step);

/// `outside`: an area that a statement reads or changes lies in one of its images. One that a new
/// image takes from others only has to have an address of one of them, since areas crop. A text is
/// written whatever the length of its area, so that is not looked at.
void checkOutsideAreas(const Step& step);

}  // namespace Strict
