#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "io/IntelHexRecord.hpp"
#include "io/import/RecordParser.hpp"

namespace Io::Import {

/// Parses Intel HEX, all six record types (Intel, "Hexadecimal Object File Format Specification",
/// revision A).
///
/// The last line must be the end-of-file record, by its type digits alone. A line that is no
/// well-formed record is passed over in silence; a record that contradicts the format, or its own
/// checksum, ends the parse and discards all data.
class IntelHexParser : public RecordParser {
public:
    explicit IntelHexParser(std::uint64_t fileSize);
    ~IntelHexParser();
    IntelHexParser(IntelHexParser&& other) noexcept;
    IntelHexParser& operator=(IntelHexParser&& other) = delete;
    IntelHexParser(const IntelHexParser&) = delete;
    IntelHexParser& operator=(const IntelHexParser&) = delete;

    /// Takes the current line.
    void take(const TextLines& lines) {
        parsed_.hasLines = true;
        if (lines.isLast())
            takeLast(lines.line());
        else if (!isOver())
            takeRecord(lines);
    }

    /// Takes the perfect data records that follow the current line and have been read already.
    void takeAhead(TextLines& lines);

private:
    class Syntax;
    void takeLast(std::string_view line);
    void takeRecord(const TextLines& lines);
    LineFault parseRecord(std::string_view line);
    bool isConsistent(const IntelRecord& record) const;
    void storeRecord(const IntelRecord& record);

    std::unique_ptr<Syntax> syntax_;
    /// Base address in force, from the last extended address record.
    std::uint64_t segmentBase_ = 0;
};

}  // namespace Io::Import
