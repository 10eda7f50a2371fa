#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "io/IntelHexRecord.hpp"
#include "io/import/FormatScan.hpp"
#include "io/import/RecordInFile.hpp"

namespace Io::Import {

/// Reads Intel HEX, all six record types (Intel, "Hexadecimal Object File Format Specification",
/// revision A).
///
/// The last line must be the end-of-file record, by its type digits alone. A line that is no
/// well-formed record is passed over in silence; a record that contradicts the format, or its own
/// checksum, ends the parse with a report and discards all that was read.
class IntelHexInFile final : public RecordInFile {
public:
    /// @throws Io::bad_open
    explicit IntelHexInFile(const std::string& path);

    /// The file has been opened already.
    ///
    /// @param watch  looks on while not all of its lines have been seen. Then a file that is not
    ///               just as it should be is left unfinished, and nothing is said.
    IntelHexInFile(const std::string& path, TextLines lines, FormatWatch watch = {});

private:
    /// One record, its checksum byte left out of `bytes`.
    struct Record {
        std::span<const std::uint8_t> bytes;
        std::uint8_t checksum;

        std::uint32_t length() const { return bytes[0]; }
        std::uint32_t address() const { return bytes[1] * 256U + bytes[2]; }
        IntelRecordType type() const { return intelRecordType(bytes[3]); }
        std::span<const std::uint8_t> head() const { return bytes.first(4); }
        std::span<const std::uint8_t> data() const { return bytes.subspan(4); }
    };

    bool parseFile(FormatWatch watch);
    bool parseRecords(FormatWatch watch);
    static std::uint8_t checksumOf(const Record& record);
    static bool isConsistent(const Record& record);
    void storeRecord(const Record& record);
    void reportLogicalError(std::string_view line);

    /// Base address in force, from the last extended address record.
    std::uint64_t segmentBase = 0;
};

}  // namespace Io::Import
