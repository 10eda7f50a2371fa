#include "io/export/RawBinaryOutFile.hpp"

namespace Io::Export {

void RawBinaryOutFile::insertMemoryBuffer(const Buffer::MemoryBuffer& buffer) {
    outputBytes.append(buffer, "RawBinaryOutFile");
}

void RawBinaryOutFile::saveToFile() {
    write([this](const Sink& sink) {
        outputBytes.forBytes([&](std::span<const std::uint8_t> bytes) {
            sink({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
        });
    });
}

}  // namespace Io::Export
