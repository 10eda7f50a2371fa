#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "io/import/FormatScan.hpp"
#include "io/import/TessaronImportApi.hpp"

namespace Io::Import {

/// Chooses the constructor that takes a file as raw bytes.
struct RawBinaryTag {};
inline constexpr RawBinaryTag rawBinary;

/// A file of any format: detects which one it is and forwards every operation to its reader.
class GenericInFile final : public TessaronImportApi {
public:
    /// Detects the format by the first character of each line, see FormatScan, and reads the file
    /// in the same pass.
    ///
    /// @param addressUnit  of a text format: its addresses count words of that many bytes
    /// @throws Io::bad_open
    explicit GenericInFile(std::string path, std::uint32_t addressUnit = 1);

    /// Takes the file as raw bytes without a look at it.
    ///
    /// @throws Io::bad_open
    GenericInFile(std::string path, RawBinaryTag tag);

    Facts::InputFormat getFormat() const override { return reader_->getFormat(); }
    std::uint64_t getMinAddress() const override { return reader_->getMinAddress(); }
    std::uint64_t getDataLength() const override { return reader_->getDataLength(); }
    Buffer::MemoryBuffer getMemory() const override { return reader_->getMemory(); }
    Buffer::MemoryBuffer takeMemory() override { return reader_->takeMemory(); }
    Buffer::MemoryBuffer getMemory(std::uint64_t startAddress,
                                   std::uint64_t dataLength) const override {
        return reader_->getMemory(startAddress, dataLength);
    }
    bool hasStartAddress() const override { return reader_->hasStartAddress(); }
    std::uint64_t getStartAddress() const override { return reader_->getStartAddress(); }
    Buffer::AreaList getDataAreas() const override { return reader_->getDataAreas(); }
    void fillMemoryBuffer(Buffer::MemoryBuffer& buffer) const override {
        reader_->fillMemoryBuffer(buffer);
    }

    std::optional<Buffer::Overlap> findOverlap(bool isDifferent) const override {
        return reader_->findOverlap(isDifferent);
    }
    void preferFirst() override { reader_->preferFirst(); }

    InFileType type() const { return fileType_; }

private:
    std::string fileName_;
    InFileType fileType_;
    std::unique_ptr<TessaronImportApi> reader_;
};

}  // namespace Io::Import
