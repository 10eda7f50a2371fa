#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "facts/Facts.hpp"
#include "io/InFile.hpp"
#include "io/import/SectionChoice.hpp"
#include "io/import/TessaronImportApi.hpp"
#include "io/import/elf/ElfLayout.hpp"

namespace Io::Import {

/// A part of an ELF file that its program headers load.
struct ElfSegment {
    std::uint64_t address;         ///< physical, of its first byte
    std::uint64_t fileOffset;      ///< of its first byte
    std::uint64_t length;          ///< in bytes; zeros that only the memory has are left out
    std::uint64_t virtualAddress;  ///< of its first byte when the program runs
};

/// An ELF file of 32 or 64 bits in either byte order. Every offset and size in it is checked
/// against the file before it is used.
class ElfFile final : public BinaryInFile {
public:
    /// Reads the headers.
    ///
    /// @throws Io::bad_open
    /// @throws Malformed  after a report
    explicit ElfFile(const std::string& path) : ElfFile(path, openInput(path)) {}

    /// The file `path` has been opened already.
    ///
    /// @param addressUnit  bytes of the words that the addresses of the file count; its sizes, and
    ///                     all that is answered, count bytes
    ElfFile(const std::string& path, Platform::InputFile file, std::uint32_t addressUnit = 1);

    /// The length of the file, in bytes.
    std::uint64_t size() const { return fileSize(); }

    /// The entry point; 0 counts as none.
    std::uint64_t entry() const { return entry_; }

    /// The bytes of the words that addresses count on the machine that the file is for.
    std::uint32_t addressUnitOfMachine() const;

    /// What is to be loaded, in the order of the program headers.
    ///
    /// These are the segments of type LOAD with bytes in the file, at their physical addresses, or
    /// at the virtual ones if all physical addresses are 0, as linkers write that have none. A
    /// segment that begins with the headers of the file loses the bytes in front of its first
    /// section: linkers let segments begin there, and nobody wants headers in a flash image.
    const std::vector<ElfSegment>& segments() const { return segments_; }

    /// What is to be loaded of the chosen sections, ascending in each segment. Of sections that are
    /// used, it is their bytes alone. With those that are skipped goes what aligns them, from the
    /// section before; whatever else a segment has is kept.
    ///
    /// @throws Malformed  after a report: there is no such section, it has no bytes that are
    /// loaded, sections share bytes, or nothing is left
    std::vector<ElfSegment> chosen(const SectionChoice& choice) const;

    /// The symbols that have a name and a section or a value of their own, in the order of the
    /// symbol table; none if the file was stripped. The address of an Arm function is even: the low
    /// bit of its value only selects the instruction set. Mapping symbols, which mark where code
    /// and data begin for Arm and RISC-V tools ("ELF for the Arm Architecture", section 5.5.5), are
    /// left out.
    ///
    /// @throws Malformed  after a report
    std::vector<Symbol> symbols() const;

    /// Reads the file from byte `start` on, to the end of `out`.
    ///
    /// @throws Malformed  after a report, if that fails
    void readAll(std::uint64_t start, std::span<std::uint8_t> out) const;

private:
    /// One of the tables of the file.
    struct Table {
        std::uint64_t offset = 0;
        std::uint64_t count = 0;
        std::size_t entrySize = 0;
        std::vector<std::uint8_t> bytes;

        std::span<const std::uint8_t> entry(std::uint64_t index) const {
            return std::span(bytes).subspan(static_cast<std::size_t>(index) * entrySize, entrySize);
        }
    };

    /// A section with bytes in the file that the program has when it runs.
    struct Section {
        std::string name;
        std::uint64_t begin;  ///< offset in the file
        std::uint64_t end;
    };

    [[noreturn]] void refuse(Facts::FormatFault fault, std::uint64_t where,
                             std::uint64_t number = 0) const;
    void requireInFile(std::uint64_t offset, std::uint64_t length) const;
    std::vector<std::uint8_t> readHeader();
    Table readTable(std::uint64_t offset, std::uint64_t count, std::uint64_t entrySize,
                    std::size_t smallestEntry) const;
    void readTables(std::span<const std::uint8_t> header);
    void findSegments();
    void addSegment(std::uint64_t index, bool usesVirtual);
    bool isLoaded(std::span<const std::uint8_t> section) const;
    std::vector<Section> loadedSections(const Table& names) const;
    Table sectionNames() const;
    [[noreturn]] void refuseSection(Facts::SectionFault fault, std::string_view name,
                                    std::span<const Section> known) const;
    void requireSections(const SectionChoice& choice, const Table& names,
                         std::span<const Section> known) const;
    std::uint64_t firstSectionIn(std::uint64_t offset, std::uint64_t end) const;
    Table tableOf(std::span<const std::uint8_t> section, std::uint64_t entrySize,
                  std::size_t smallestEntry) const;
    std::optional<Symbol> symbolOf(std::span<const std::uint8_t> entry,
                                   std::span<const std::uint8_t> names) const;
    std::string nameAt(std::span<const std::uint8_t> names, std::uint64_t offset) const;

    const Elf::Layout* layout_ = nullptr;
    Elf::Numbers numbers_;
    std::uint32_t addressUnit_;
    std::uint64_t machine_ = 0;
    std::uint64_t entry_ = 0;
    std::uint64_t sectionNames_ = 0;  ///< the section with the names of all
    bool isArm_ = false;
    bool hasMappingSymbols_ = false;
    Table programs_;
    Table sections_;
    std::vector<ElfSegment> segments_;
};

}  // namespace Io::Import
