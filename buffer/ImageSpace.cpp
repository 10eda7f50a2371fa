#include "buffer/ImageSpace.hpp"

#include <utility>

namespace Buffer {

namespace {

thread_local ImageSpace current;

}  // namespace

ImageSpaceScope::ImageSpaceScope(const ImageSpace& space) : outer_(std::exchange(current, space)) {}

ImageSpaceScope::~ImageSpaceScope() {
    current = outer_;
}

const ImageSpace& imageSpace() {
    return current;
}

}  // namespace Buffer
