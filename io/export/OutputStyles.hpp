#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Settings of the writers and their defaults; WRITE_FILE has templates of its own.
namespace Io::Export {

struct IntelHexOutputStyle {
    bool useSegmentAddressing = false;    ///< extended segment instead of linear addresses
    std::uint32_t dataRecordLength = 16;  ///< data bytes a record, 1 to 255
    std::uint32_t addressUnit = 1;        ///< addresses count words of that many bytes
};

struct MotorolaSOutputStyle {
    std::string moduleName;                                ///< first field of the S0 record
    std::string description = "Created By Tessaron 2008";  ///< last field of the S0 record
    std::uint8_t version = 0;
    std::uint8_t revision = 0;
    std::uint32_t maximumRecordSize = 36;  ///< data bytes a record, 21 to 32; 36 is reported
    std::uint32_t addressUnit = 1;         ///< addresses count words of that many bytes
    /// All that the S0 record says, at most 252 bytes, in place of its fields; nothing for these.
    std::optional<std::string> headerText = {};
};

struct EmbeddedOutputStyle {
    std::string section;                 ///< section name; empty for none
    std::string header;                  ///< text in front of the data
    std::string linePrefix;              ///< text at the start of a data line
    std::string elementPrefix = "0x";    ///< text in front of a byte
    std::string elementSeparator = " ";  ///< text between two bytes of a line
    std::string footer;                  ///< text after the data
    std::uint32_t elementsPerLine = 16;  ///< bytes a data line; 0 for all of them on one line
};

struct TiTxtOutputStyle {
    std::uint32_t addressUnit = 1;  ///< addresses count words of that many bytes
};

struct Uf2OutputStyle {
    /// Of the devices, see Io::Uf2::families: one for each group of images.
    std::vector<std::uint32_t> families = {0};
};

/// Words of memory files and of arrays.
struct WordStyle {
    std::uint32_t wordBytes = 1;  ///< 1, 2, 4 or 8
    bool isLittleEndian = false;  ///< the byte of the lowest address is the least significant one
};

struct HexDumpOutputStyle {
    std::uint32_t bytesPerLine = 16;  ///< 1 to 256
};

struct CArrayOutputStyle {
    std::string name = "image";
    std::uint32_t elementsPerLine = 16;  ///< elements a line; 0 for all of them on one line
    WordStyle element = {1, true};
    std::string includeGuard;  ///< the macro around the file; empty for none
};

struct DfuSeOutputStyle {
    std::uint32_t vendorId = 0xFFFF;  ///< of USB, 16 bits; 0xFFFF for any
    std::uint32_t productId = 0xFFFF;
};

struct ElfOutputStyle {
    std::string templatePath;       ///< of the ELF file that is copied
    std::uint32_t addressUnit = 1;  ///< its addresses count words of that many bytes
};

}  // namespace Io::Export
