#pragma once

#include <string>

#include "io/TextLines.hpp"
#include "io/import/MotorolaS_Parser.hpp"
#include "io/import/RecordInFile.hpp"

namespace Io::Import {

/// Reads S-records, see MotorolaS_Parser. The constructors report what is wrong with the file.
class MotorolaS_InFile final : public RecordInFile {
public:
    /// @throws Io::bad_open
    explicit MotorolaS_InFile(const std::string& path) : MotorolaS_InFile(path, TextLines(path)) {}

    /// @param lines  of the file `path`; those that are left are parsed
    /// @throws Io::bad_open  if the file has changed since it was opened
    MotorolaS_InFile(const std::string& path, TextLines lines);

    /// @param parser  has taken all of `lines`
    /// @throws Io::bad_open  if the file has changed since it was opened
    MotorolaS_InFile(const std::string& path, TextLines lines, MotorolaS_Parser parser);
};

}  // namespace Io::Import
