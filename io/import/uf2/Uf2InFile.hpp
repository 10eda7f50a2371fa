#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "io/import/AddressedData.hpp"
#include "platform/Files.hpp"

namespace Io::Import {

/// Reads UF2 (io/Uf2.hpp): the blocks that belong into the main flash, in any order. The file must
/// have each of the blocks that it counts. Those of several families of devices, of which a boot
/// loader takes one, are one image if no two of them have a byte for the same address.
class Uf2InFile final : public AddressedData {
public:
    /// @param family  of devices whose blocks alone are read; nothing for all of them
    /// @throws Io::bad_open
    /// @throws Malformed  after a report
    explicit Uf2InFile(const std::string& path, std::optional<std::uint32_t> family = {});

    /// The file `path` has been opened already.
    Uf2InFile(const std::string& path, Platform::InputFile file,
              std::optional<std::uint32_t> family = {});

    /// A file that begins with `head` is a UF2 file.
    static bool looksLike(std::string_view head) {
        return head.starts_with("UF2\n\x57\x51\x5D\x9E");
    }

    /// All of the file, those that were not asked for as well; none if no block names one.
    std::vector<DeviceFamily> getFamilies() const override { return families_; }

private:
    class Parser;
    struct Contents;
    explicit Uf2InFile(Contents contents);

    std::vector<DeviceFamily> families_;
};

}  // namespace Io::Import
