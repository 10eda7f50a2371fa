#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "io/import/AddressedData.hpp"
#include "platform/Files.hpp"

namespace Io::Import {

/// Reads UF2 (io/Uf2.hpp): the blocks that belong into the main flash, all for one family of
/// devices. The file must have each of the blocks that it counts, in any order.
class Uf2InFile final : public AddressedData {
public:
    /// @throws Io::bad_open
    /// @throws Malformed  after a report
    explicit Uf2InFile(const std::string& path);

    /// The file `path` has been opened already.
    Uf2InFile(const std::string& path, Platform::InputFile file);

    /// A file that begins with `head` is a UF2 file.
    static bool looksLike(std::string_view head) {
        return head.starts_with("UF2\n\x57\x51\x5D\x9E");
    }

    /// The family, by its name and its number, if the blocks name one.
    std::vector<std::string> getDevices() const override;

private:
    class Parser;
    struct Contents;
    explicit Uf2InFile(Contents contents);

    std::optional<std::uint32_t> family_;
};

}  // namespace Io::Import
