#pragma once

#include "strict/meaning/Step.hpp"

/// Rules about the size of what is written into an image, and of what is computed or written out.
namespace Strict {

/// `whole-image`: a CRC or hash that is put into an image without an area is repeated over all of
/// it, which destroys it. An image of its size may be made for it.
void checkWholeImage(const Step& step);

/// `value-size`: a CRC or hash fits its area exactly, since it is cut or repeated otherwise, and a
/// list of values is not longer than its area. A shorter list is a pattern, which repeats on
/// purpose.
void checkValueSizes(const Step& step);

/// `text-size`: a text is written as a whole, over what follows its area if that is too short.
void checkTextSizes(const Step& step);

/// `cropped`: bytes of a list that are not in the areas or the range of the image made of it.
void checkCroppedValues(const Step& step);

/// `word-size`, a warning: an image that lanes are taken of, and that does not begin and end with a
/// row of all of them. Each lane gets its bytes, but they do not have the same length.
void checkLaneRows(const Step& step);

/// `empty-digest`: a CRC, hash or signature over no image, or over images without an address.
void checkEmptyDigest(const Step& step);

/// `empty-output`: a file that is made of no byte.
void checkEmptyOutput(const Step& step);

}  // namespace Strict
