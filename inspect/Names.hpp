#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "buffer/Area.hpp"
#include "io/import/TessaronImportApi.hpp"

namespace Inspect {

/// A function, a variable or another part of a program.
struct Name {
    using Kind = Io::Import::Symbol::Kind;
    Buffer::Area area;  ///< where its bytes are loaded; of a label, length 0
    std::string text;   ///< as the source has it
    Kind kind = Kind::Other;
};

/// The names of a program by the addresses that its bytes are loaded to, for people who look at an
/// image.
class Names {
public:
    Names() = default;

    /// Of names that overlap, the first one counts: the one that begins before the others, and of
    /// those that begin together the longest one. A label reaches up to the next name, at most up
    /// to the end of the stretch of `loaded` that has it.
    ///
    /// @param loaded  what the program loads, in any order
    Names(std::vector<Name> names, const Buffer::AreaList& loaded);

    bool isEmpty() const { return names_.empty(); }

    /// Ascending, without overlap, none of length 0.
    std::span<const Name> all() const { return names_; }

    /// "main+0x14", "main" for its first byte, or nothing where no name is.
    std::string at(std::uint64_t address) const;

    /// The names of the first and the last address, "main+0x14 to +0x17" or "main+0x14 to table";
    /// empty if neither has one.
    std::string of(const Buffer::Area& area) const;

    /// The name that has the address, or null.
    const Name* find(std::uint64_t address) const;

private:
    std::vector<Name> names_;
};

/// The names of what an ELF file or the map file of GNU ld says is loaded. A file of another kind
/// has none.
///
/// @param addressUnit  the addresses of an ELF file count words of that many bytes
/// @throws Io::bad_open
/// @throws Io::Import::Malformed  after a report, for a damaged ELF file
Names namesIn(const std::string& path, std::uint32_t addressUnit = 1);

/// "main+0x14 to table", of the names of two addresses; the only one if one of them is empty.
std::string fromTo(const std::string& first, const std::string& last);

}  // namespace Inspect
