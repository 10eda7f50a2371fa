#pragma once

#include <cstdint>
#include <string>

#include "io/InFile.hpp"
#include "io/import/TessaronImportApi.hpp"

namespace Io::Import {

/// Any file as raw bytes: byte n of the file has the address n. A file of more than 0xFFFFFFFF
/// bytes is cut to that length, with a report.
class RawBinaryInFile final : public BinaryInFile, public TessaronImportApi {
public:
    /// @throws Io::bad_open
    explicit RawBinaryInFile(const std::string& path);

    /// The file has been opened already.
    RawBinaryInFile(const std::string& path, Platform::InputFile file);

    Facts::InputFormat getFormat() const override { return Facts::InputFormat::RawBinary; }
    std::uint64_t getMinAddress() const override { return minAddress; }
    std::uint64_t getDataLength() const override { return dataLength_; }
    Buffer::MemoryBuffer getMemory() const override { return getMemory(minAddress, dataLength_); }
    Buffer::MemoryBuffer getMemory(std::uint64_t start, std::uint64_t length) const override;
    bool hasStartAddress() const override { return false; }
    std::uint64_t getStartAddress() const override { return 0; }
    Buffer::AreaList getDataAreas() const override { return {{minAddress, dataLength_}}; }
    void fillMemoryBuffer(Buffer::MemoryBuffer& buffer) const override;

    /// Four lines; the last one shows the address one past the last byte.
    std::string getInformation() const;

private:
    void limitLength();

    static constexpr std::uint64_t minAddress = 0;
    std::uint64_t dataLength_ = 0;
};

}  // namespace Io::Import
