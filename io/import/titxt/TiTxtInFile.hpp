#pragma once

#include <string>

#include "io/import/AddressedData.hpp"

namespace Io::Import {

/// Reads TI-TXT (Texas Instruments, "MSP430 Assembly Language Tools User's Guide", SLAU131, section
/// "TI-TXT Hex Format"): "@" and a hexadecimal address open a section, its bytes follow in two
/// digits each, and "q" ends the file.
///
/// An address has up to eight digits, digits of both cases are read, and so are lines of any
/// length, with any blanks, and blank lines. Anything else makes the whole file malformed.
class TiTxtInFile final : public AddressedData {
public:
    /// @throws Io::bad_open
    /// @throws Malformed  after a report
    explicit TiTxtInFile(const std::string& path);
};

}  // namespace Io::Import
