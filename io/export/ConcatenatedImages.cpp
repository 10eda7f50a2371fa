#include "io/export/ConcatenatedImages.hpp"

#include "util/Report.hpp"

namespace Io::Export {

void ConcatenatedImages::append(const Buffer::MemoryBuffer& buffer, std::string_view writerName) {
    constexpr std::uint64_t mostBytes = 0xFFFFFFFF;
    if (buffer.getDataLength() + size_ > mostBytes) {
        Util::reportLine(writerName,
                         "(insertMemoryBuffer-Operation). The operation was not successful, "
                         "because the resulting");
        Util::reportLine("Number of elements will be bigger than (int) ", mostBytes);
        Util::reportLine("Nothing was inserted.");
        return;
    }
    images_.emplace_back(buffer);
    size_ += buffer.getDataLength();
}

}  // namespace Io::Export
