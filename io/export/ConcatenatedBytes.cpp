#include "io/export/ConcatenatedBytes.hpp"

#include "util/Report.hpp"

namespace Io::Export {

void ConcatenatedBytes::append(const Buffer::MemoryBuffer& buffer, std::string_view writerName) {
    constexpr std::uint64_t mostBytes = 0xFFFFFFFF;
    if (buffer.getDataLength() + outputBytes.size() > mostBytes) {
        Util::reportLine(writerName,
                         "(insertMemoryBuffer-Operation). The operation was not successful, "
                         "because the resulting");
        Util::reportLine("Number of elements will be bigger than (int) ", mostBytes);
        Util::reportLine("Nothing was inserted.");
        return;
    }
    buffer.appendBytes(outputBytes, buffer.getStartAddress(), buffer.getDataLength());
}

}  // namespace Io::Export
