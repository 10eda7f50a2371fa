#include "io/export/ConcatenatedImages.hpp"

#include "facts/Listener.hpp"

namespace Io::Export {

void ConcatenatedImages::append(const Buffer::MemoryBuffer& buffer) {
    constexpr std::uint64_t mostBytes = 0xFFFFFFFF;
    if (buffer.getDataLength() + size_ > mostBytes) {
        Facts::report(Facts::TooManyBytes{writer_, mostBytes});
        return;
    }
    images_.emplace_back(buffer);
    size_ += buffer.getDataLength();
}

}  // namespace Io::Export
