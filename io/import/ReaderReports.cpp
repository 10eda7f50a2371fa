#include "io/import/ReaderReports.hpp"

#include "facts/Listener.hpp"

namespace Io::Import {

std::string informationAbout(Facts::InputFormat reader, std::uint64_t dataLength,
                             std::uint64_t minAddress, std::uint64_t maxAddress) {
    return "Information about current " + std::string(Facts::readerName(reader)) +
           " Object\ndataLength: (int)" + std::to_string(dataLength) + "\nminAddress: (int)" +
           std::to_string(minAddress) + "\nmaxAddress: (int)" + std::to_string(maxAddress) + "\n";
}

void reportRange(Facts::InputFormat reader, Facts::ReadOperation operation,
                 const Buffer::Area& requested, const Buffer::Area& data,
                 const std::string& information) {
    Facts::report(Facts::ReadRangeOutside{reader, operation, requested.start, requested.end(),
                                          data.start, data.end(), information});
}

Buffer::MemoryBuffer newImage(std::uint64_t startAddress, std::uint64_t dataLength) {
    Buffer::MemoryBuffer image(startAddress, dataLength);
    if (image.getDataLength() != dataLength)
        Facts::report(Facts::FillTooLong{startAddress, dataLength, startAddress});
    return image;
}

}  // namespace Io::Import
