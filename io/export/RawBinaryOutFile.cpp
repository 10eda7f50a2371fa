#include "io/export/RawBinaryOutFile.hpp"

namespace Io::Export {

void RawBinaryOutFile::insertMemoryBuffer(const Buffer::MemoryBuffer& buffer) {
    outputBytes.append(buffer, "RawBinaryOutFile");
}

void RawBinaryOutFile::saveToFile() {
    write([this](const Sink& sink) {
        const auto bytes = outputBytes.view();
        sink({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    });
}

}  // namespace Io::Export
