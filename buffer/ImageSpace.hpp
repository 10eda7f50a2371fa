#pragma once

#include <cstdint>

namespace Buffer {

/// Exclusive bound for the length of an image, unless a front end chooses another one.
inline constexpr std::uint64_t MAX_ALLOWED_MEMORY_BUFFER_SIZE = 0xFFFFFFFF;

/// How images take the memory and the address space of the machine. Lengths are in bytes.
struct ImageSpace {
    /// Exclusive bound for the length of an image.
    std::uint64_t lengthEnd = MAX_ALLOWED_MEMORY_BUFFER_SIZE;
    /// An image that has this length or a greater one takes memory only for the blocks of addresses
    /// that something is written to. The machine must have room for a shorter one when it is made.
    std::uint64_t shortestSparse = ~std::uint64_t{0};
};

/// Lets new images of this thread take space in the given way while this object lives. Scopes nest:
/// the inner one hides the outer one.
class ImageSpaceScope {
public:
    explicit ImageSpaceScope(const ImageSpace& space);
    ~ImageSpaceScope();
    ImageSpaceScope(const ImageSpaceScope&) = delete;
    ImageSpaceScope& operator=(const ImageSpaceScope&) = delete;

private:
    ImageSpace outer_;
};

/// The way in force on this thread.
///
/// Readers and statements make images as values; as with the listener of facts, the choice of the
/// front end is found by scope and not handed down.
const ImageSpace& imageSpace();

}  // namespace Buffer
