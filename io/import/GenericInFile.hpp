#pragma once

#include <memory>
#include <string>

#include "io/File.hpp"
#include "io/import/FormatScan.hpp"
#include "io/import/TessaronImportApi.hpp"

namespace Io::Import {

/// Chooses the constructor that takes a file as raw bytes.
struct RawBinaryTag {};
inline constexpr RawBinaryTag rawBinary;

/// A file of any format: finds out which one it is and hands every question to its reader.
class GenericInFile final : public TessaronImportApi {
public:
    /// Tells the format from the first character of each line, see FormatScan.
    ///
    /// @throws Io::bad_open
    explicit GenericInFile(std::string path);

    /// Takes the file as raw bytes without a look at it.
    ///
    /// @throws Io::bad_open
    GenericInFile(std::string path, RawBinaryTag tag);

    std::uint64_t getMinAddress() const override { return reader->getMinAddress(); }
    std::uint64_t getDataLength() const override { return reader->getDataLength(); }
    Buffer::MemoryBuffer getMemory() const override { return reader->getMemory(); }
    Buffer::MemoryBuffer takeMemory() override { return reader->takeMemory(); }
    Buffer::MemoryBuffer getMemory(std::uint64_t startAddress,
                                   std::uint64_t dataLength) const override {
        return reader->getMemory(startAddress, dataLength);
    }
    bool hasStartAddress() const override { return reader->hasStartAddress(); }
    std::uint64_t getStartAddress() const override { return reader->getStartAddress(); }
    Buffer::AreaList getDataAreas() const override { return reader->getDataAreas(); }
    void fillMemoryBuffer(Buffer::MemoryBuffer& buffer) const override {
        reader->fillMemoryBuffer(buffer);
    }

    InFileType type() const { return fileType; }

private:
    /// Looks at the lines that are left.
    static InFileType detectFileType(TextLines& lines, FormatScan& scan);

    /// Has `Reader` take the file while its format is still being found out. If all is as it should
    /// be, this spares a pass.
    template <class Reader>
    void readAtOnce(TextLines lines, FormatScan& scan);

    /// @param lines  of the same file. The reader goes on with it: opened by its name once more, it
    ///               could be another one by now.
    std::unique_ptr<TessaronImportApi> createReader(TextLines lines) const;

    std::string fileName;
    InFileType fileType;
    std::unique_ptr<TessaronImportApi> reader;
};

}  // namespace Io::Import
