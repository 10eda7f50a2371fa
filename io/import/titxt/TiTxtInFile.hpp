#pragma once

#include <string>
#include <string_view>

#include "io/import/AddressedData.hpp"
#include "io/import/LinedData.hpp"
#include "io/import/RecordVisitor.hpp"
#include "platform/Files.hpp"

namespace Io::Import {

/// Reads TI-TXT (Texas Instruments, "MSP430 Assembly Language Tools User's Guide", SLAU131, section
/// "TI-TXT Hex Format"): "@" and a hexadecimal address open a section, its bytes follow in two
/// digits each, and "q" ends the file.
///
/// An address has up to eight digits, digits of both cases are read, and so are a byte order mark
/// of UTF-8, lines of any length, with any blanks, and blank lines. Anything else makes the whole
/// file malformed.
class TiTxtInFile final : public AddressedData {
public:
    /// @throws Io::bad_open
    /// @throws Malformed  after a report
    explicit TiTxtInFile(const std::string& path);

    /// The file `path` has been opened already.
    ///
    /// @param visitor      learns which lines have data; null for nobody
    /// @param addressUnit  the addresses of the file count words of that many bytes
    TiTxtInFile(const std::string& path, Platform::InputFile file, RecordVisitor* visitor = nullptr,
                std::uint32_t addressUnit = 1);

    /// A file that begins with `head` is a TI-TXT file: "@" comes first, then an address and bytes
    /// that blanks separate, or the end.
    static bool looksLike(std::string_view head);

private:
    explicit TiTxtInFile(LinedData data);
};

}  // namespace Io::Import
