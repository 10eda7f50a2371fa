#pragma once

#include <string>
#include <string_view>

#include "io/import/AddressedData.hpp"
#include "io/import/LinedData.hpp"
#include "io/import/RecordVisitor.hpp"
#include "platform/Files.hpp"

namespace Io::Import {

/// Reads a memory file for $readmemh of Verilog (IEEE Std 1364-2005, section 17.2.9): words in
/// hexadecimal digits, "@" and an address in words in front of those that begin there, white space
/// and comments of both kinds anywhere between.
///
/// All words have the same number of digits, which gives their size; the byte of the lowest address
/// is their most significant one. Data before the first "@" begins at 0. Underscores within a word,
/// digits of both cases and a byte order mark of UTF-8 are read. The digits x and z, whose bits
/// have no value, make the whole file malformed, as anything else does.
class VmemInFile final : public AddressedData {
public:
    /// @throws Io::bad_open
    /// @throws Malformed  after a report
    explicit VmemInFile(const std::string& path);

    /// The file `path` has been opened already.
    ///
    /// @param visitor  learns which lines have data; null for nobody
    VmemInFile(const std::string& path, Platform::InputFile file, RecordVisitor* visitor = nullptr);

    /// A file that begins with `head` is a memory file: after comments, "@" and an address come
    /// first, then a word.
    static bool looksLike(std::string_view head);

private:
    explicit VmemInFile(LinedData data);
};

}  // namespace Io::Import
