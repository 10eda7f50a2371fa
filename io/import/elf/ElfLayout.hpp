#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

/// Where an ELF file keeps what (Tool Interface Standard, "Executable and Linking Format
/// Specification", version 1.2; System V ABI, edition 4.1, chapter 4, for 64 bits).
namespace Io::Import::Elf {

/// A number of a structure of the file.
struct Field {
    std::size_t offset;  ///< in bytes, from the beginning of the structure
    std::size_t width;   ///< in bytes
};

struct HeaderFields {
    Field type, machine, entry, programOffset, sectionOffset, programEntrySize, programCount,
        sectionEntrySize, sectionCount, sectionNames;
    std::size_t size;
};

struct SegmentFields {
    Field type, offset, virtualAddress, physicalAddress, fileSize, memorySize;
    std::size_t size;
};

struct SectionFields {
    Field name, type, flags, offset, sectionSize, link, info, entrySize;
    std::size_t size;
};

struct SymbolFields {
    Field name, value, symbolSize, info, section;
    std::size_t size;
};

/// The structures of one class of files, of 32 or of 64 bits.
struct Layout {
    HeaderFields header;
    SegmentFields segment;
    SectionFields section;
    SymbolFields symbol;
};

extern const Layout layout32;
extern const Layout layout64;

inline constexpr std::size_t identificationSize = 16;
inline constexpr std::size_t largestHeader = 64;

inline constexpr std::uint64_t loadSegment = 1;           ///< PT_LOAD
inline constexpr std::uint64_t countInSection = 0xFFFF;   ///< PN_XNUM
inline constexpr std::uint64_t nameInSection = 0xFFFF;    ///< SHN_XINDEX
inline constexpr std::uint64_t absoluteSection = 0xFFF1;  ///< SHN_ABS
inline constexpr std::uint64_t symbolTable = 2;           ///< SHT_SYMTAB
inline constexpr std::uint64_t noBits = 8;                ///< SHT_NOBITS
inline constexpr std::uint64_t allocated = 2;             ///< SHF_ALLOC
inline constexpr std::uint64_t dataSymbol = 1;            ///< STT_OBJECT
inline constexpr std::uint64_t functionSymbol = 2;        ///< STT_FUNC
inline constexpr std::uint64_t sectionSymbol = 3;         ///< STT_SECTION
inline constexpr std::uint64_t fileSymbol = 4;            ///< STT_FILE
inline constexpr std::uint64_t localBinding = 0;          ///< STB_LOCAL
inline constexpr std::uint64_t machineArm = 40;           ///< EM_ARM
/// EM_DSPIC30F; as on the next, an address counts words of 16 bits.
inline constexpr std::uint64_t machineDsPic30F = 118;
/// EM_TI_C2000 (Texas Instruments, "C28x Embedded Application Binary Interface", SPRAC71).
inline constexpr std::uint64_t machineC2000 = 141;
inline constexpr std::uint64_t machineAArch64 = 183;  ///< EM_AARCH64
inline constexpr std::uint64_t machineRiscV = 243;    ///< EM_RISCV

/// Numbers of structures in the byte order of the file.
class Numbers {
public:
    explicit Numbers(bool isBigEndian = false) : isBigEndian_(isBigEndian) {}

    /// The number of `field` in `structure`, which has it.
    std::uint64_t of(Field field, std::span<const std::uint8_t> structure) const {
        std::uint64_t number = 0;
        for (std::size_t i = 0; i < field.width; ++i) {
            const std::size_t at = isBigEndian_ ? i : field.width - 1 - i;
            number = number << 8U | structure[field.offset + at];
        }
        return number;
    }

private:
    bool isBigEndian_;
};

}  // namespace Io::Import::Elf
