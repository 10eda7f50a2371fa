#include "io/export/ConcatenatedImages.hpp"

#include "facts/Listener.hpp"

namespace Io::Export {

void ConcatenatedImages::append(const ImageView& image) {
    constexpr std::uint64_t mostBytes = 0xFFFFFFFF;
    if (image.elements.size() + size_ > mostBytes) {
        Facts::report(Facts::TooManyBytes{writer_, mostBytes});
        return;
    }
    images_.push_back(image);
    size_ += image.elements.size();
}

}  // namespace Io::Export
