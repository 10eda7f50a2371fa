#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "io/import/RecordParser.hpp"

namespace Io::Import {

/// Parses S-records with addresses of two, three and four bytes, mixed as they come.
///
/// The last line of the file is ignored, terminator or not. A line that is not a well-formed record
/// ends the parse and leaves what came before it; a record that contradicts the format, or its own
/// checksum, discards all data. An S0 record has room for ten characters of module name, version
/// and revision.
class MotorolaS_Parser : public RecordParser {
public:
    explicit MotorolaS_Parser(std::uint64_t fileSize);
    ~MotorolaS_Parser();
    MotorolaS_Parser(MotorolaS_Parser&& other) noexcept;
    MotorolaS_Parser& operator=(MotorolaS_Parser&& other) = delete;
    MotorolaS_Parser(const MotorolaS_Parser&) = delete;
    MotorolaS_Parser& operator=(const MotorolaS_Parser&) = delete;

    /// Takes the current line.
    void take(const TextLines& lines) {
        parsed_.hasLines = true;
        if (!lines.isLast() && !isOver()) takeRecord(lines);
    }

    /// Takes the perfect data records that follow the current line and have been read already.
    /// Returns their number.
    std::uint64_t takeAhead(TextLines& lines);

private:
    class Syntax;
    struct Record;

    void takeRecord(const TextLines& lines);
    LineFault parseRecord(std::string_view line);
    bool isConsistent(const Record& record) const;
    void storeRecord(const Record& record);

    std::unique_ptr<Syntax> syntax_;
    /// S1, S2 and S3 records since the last S5.
    std::uint32_t dataRecordCount_ = 0;
};

}  // namespace Io::Import
