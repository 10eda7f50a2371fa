#pragma once

#include <cstdint>
#include <string_view>

namespace Io::Import {

enum class InFileType : std::uint32_t { IntelHex = 0, MotorolaS = 1, RawBinary = 2 };

/// Tells the format of a file from the first character of each line: ":" makes it Intel HEX, "S"
/// S-records, the last of them counts; "/" and empty lines say nothing; any other character makes
/// it raw binary for good, and so does the lack of records.
class FormatScan {
public:
    /// Takes the next line into account, in the order of the file.
    void look(std::string_view line) {
        const char first = line.empty() ? '\0' : line.front();
        if (isFinal_ || first == '/' || first == '\0') return;
        isFinal_ = first != ':' && first != 'S';
        isUnknown_ = false;
        type_ = isFinal_       ? InFileType::RawBinary
                : first == ':' ? InFileType::IntelHex
                               : InFileType::MotorolaS;
    }

    /// The format, as far as the lines go that it was shown.
    InFileType type() const { return type_; }

    /// No line has said anything yet.
    bool isUnknown() const { return isUnknown_; }

    /// No further line can change the type.
    bool isFinal() const { return isFinal_; }

private:
    InFileType type_ = InFileType::RawBinary;
    bool isUnknown_ = true;
    bool isFinal_ = false;
};

/// Looks on while a reader takes the lines of a file of which not all have been seen.
class FormatWatch {
public:
    /// The format is known: there is nothing to look at.
    FormatWatch() = default;

    /// The format is most likely `expected`.
    FormatWatch(FormatScan& scan, InFileType expected) : scan_(&scan), expected_(expected) {}

    bool isOn() const { return scan_ != nullptr; }

    /// False when the file, as far as this line goes, has another format.
    bool look(std::string_view line) {
        if (!isOn()) return true;
        scan_->look(line);
        return scan_->type() == expected_;
    }

private:
    FormatScan* scan_ = nullptr;
    InFileType expected_ = InFileType::RawBinary;
};

}  // namespace Io::Import
