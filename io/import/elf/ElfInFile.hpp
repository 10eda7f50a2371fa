#pragma once

#include <string>

#include "io/import/AddressedData.hpp"
#include "io/import/elf/ElfFile.hpp"

namespace Io::Import {

/// Reads what an ELF file loads, see ElfFile::segments; its entry point is the start address.
class ElfInFile final : public AddressedData {
public:
    /// @throws Io::bad_open
    /// @throws Malformed  after a report
    explicit ElfInFile(const std::string& path) : ElfInFile(ElfFile(path)) {}
    explicit ElfInFile(const ElfFile& file);
};

}  // namespace Io::Import
