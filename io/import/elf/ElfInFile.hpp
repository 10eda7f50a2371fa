#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "io/import/AddressedData.hpp"
#include "io/import/elf/ElfFile.hpp"

namespace Io::Import {

/// Reads what an ELF file loads, see ElfFile::segments; its entry point is the start address.
class ElfInFile final : public AddressedData {
public:
    /// @throws Io::bad_open
    /// @throws Malformed  after a report
    explicit ElfInFile(const std::string& path) : ElfInFile(path, openInput(path)) {}

    /// The file `path` has been opened already.
    ///
    /// @param addressUnit  the addresses of the file count words of that many bytes
    ElfInFile(const std::string& path, Platform::InputFile file, std::uint32_t addressUnit = 1)
        : ElfInFile(std::make_unique<ElfFile>(path, std::move(file), addressUnit)) {}

    /// The same, of the chosen sections alone.
    ElfInFile(const std::string& path, Platform::InputFile file, std::uint32_t addressUnit,
              const SectionChoice& choice)
        : ElfInFile(std::make_unique<ElfFile>(path, std::move(file), addressUnit), &choice) {}

    /// A file that begins with `head` is an ELF file (System V ABI, chapter 4).
    static bool looksLike(std::string_view head) { return head.starts_with("\x7F\x45LF"); }

    Buffer::AreaList getSegments() const override;
    std::vector<Symbol> getSymbols() const override { return file_->symbols(); }
    std::uint32_t likelyAddressUnit() const override { return file_->addressUnitOfMachine(); }

private:
    /// @param choice  null for all that the file loads
    explicit ElfInFile(std::unique_ptr<const ElfFile>&& file,
                       const SectionChoice* choice = nullptr);
    ElfInFile(std::unique_ptr<const ElfFile>&& file, std::vector<ElfSegment> segments);

    std::unique_ptr<const ElfFile> file_;
    std::vector<ElfSegment> segments_;  ///< that were read
};

}  // namespace Io::Import
