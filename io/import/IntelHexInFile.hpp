#pragma once

#include <string>

#include "io/TextLines.hpp"
#include "io/import/IntelHexParser.hpp"
#include "io/import/RecordInFile.hpp"

namespace Io::Import {

/// Reads Intel HEX, see IntelHexParser. The constructors report what is wrong with the file.
class IntelHexInFile final : public RecordInFile {
public:
    /// @throws Io::bad_open
    explicit IntelHexInFile(const std::string& path) : IntelHexInFile(path, TextLines(path)) {}

    /// @param lines  of the file `path`; those that are left are parsed
    /// @throws Io::bad_open  if the file has changed since it was opened
    IntelHexInFile(const std::string& path, TextLines lines);

    /// @param parser  has taken all of `lines`
    /// @throws Io::bad_open  if the file has changed since it was opened
    IntelHexInFile(const std::string& path, TextLines lines, IntelHexParser parser);
};

}  // namespace Io::Import
