#pragma once

#include <cstdint>
#include <string_view>

namespace Io::Import {

enum class InFileType : std::uint32_t { IntelHex = 0, MotorolaS = 1, RawBinary = 2 };

/// Detects the format of a file by the first character of each line: ":" makes it Intel HEX, "S"
/// S-records, the last of them counts; "/" and empty lines are ignored; any other character makes
/// it raw binary for good, and so does the lack of records.
class FormatScan {
public:
    /// Takes the next line into account, in the order of the file.
    void look(std::string_view line) {
        const char first = line.empty() ? '\0' : line.front();
        if (isFinal_ || first == '/' || first == '\0') return;
        isFinal_ = first != ':' && first != 'S';
        type_ = isFinal_       ? InFileType::RawBinary
                : first == ':' ? InFileType::IntelHex
                               : InFileType::MotorolaS;
    }

    /// The format, as far as the lines go that it was shown.
    InFileType type() const { return type_; }

    /// No further line can change the type.
    bool isFinal() const { return isFinal_; }

private:
    InFileType type_ = InFileType::RawBinary;
    bool isFinal_ = false;
};

}  // namespace Io::Import
