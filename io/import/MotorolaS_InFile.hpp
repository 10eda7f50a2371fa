#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "io/SRecord.hpp"
#include "io/import/FormatScan.hpp"
#include "io/import/RecordInFile.hpp"

namespace Io::Import {

struct RecordBytes;

/// Reads S-records with addresses of two, three and four bytes, mixed as they come.
///
/// The last line of the file is not looked at, terminator or not. A line that is no well-formed
/// record ends the parse with a report and leaves what came before it; a record that contradicts
/// the format, or its own checksum, discards everything. An S0 record holds ten characters of
/// module name, version, revision and a description.
class MotorolaS_InFile final : public RecordInFile {
public:
    /// @throws Io::bad_open
    explicit MotorolaS_InFile(const std::string& path);

    /// The file has been opened already.
    ///
    /// @param watch  looks on while not all of its lines have been seen. Then a file that is not
    ///               just as it should be is left unfinished, and nothing is said.
    MotorolaS_InFile(const std::string& path, TextLines lines, FormatWatch watch = {});

private:
    /// What is known of the record that is being matched, beside its bytes.
    struct Record {
        SRecordType type = SRecordType::Unknown;
        std::size_t addressSize = 0;
        std::size_t dataSize = 0;
        /// The count that leaves no room for data, if it does not.
        std::optional<std::uint32_t> lowCount;
    };

    bool parseFile(FormatWatch watch);
    bool parseRecords(FormatWatch watch);
    void storeParsedType(std::uint32_t digit);
    void storeParsedSize(const RecordBytes& bytes);

    /// @param bytes  count, address, data and checksum of the record
    bool isConsistent(std::span<const std::uint8_t> bytes) const;
    void storeRecord(std::span<const std::uint8_t> bytes);
    std::span<const std::uint8_t> addressOf(std::span<const std::uint8_t> bytes) const {
        return bytes.subspan(1, record.addressSize);
    }
    std::span<const std::uint8_t> dataOf(std::span<const std::uint8_t> bytes) const {
        return bytes.subspan(1 + record.addressSize, record.dataSize);
    }
    void reportLowCount() const;
    void giveUp(std::string_view line, bool isRecord);
    void reportLine(std::string_view line, std::string_view fault) const;
    void limitData();

    Record record;
    std::string moduleName;
    std::string description = "Created By Tessaron 2008";
    std::uint32_t version = 0;
    std::uint32_t revision = 0;
    /// S1, S2 and S3 records since the last S5, and their number when that one was met.
    std::uint32_t dataRecordCount = 0;
    std::uint32_t lastRecordCount = 0;
};

}  // namespace Io::Import
