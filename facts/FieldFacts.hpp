#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <variant>

#include "facts/InputFormat.hpp"

/// What readers of text formats report of files as they are in the field. Texts are views that are
/// valid during the report; lines are counted from 1.
namespace Facts {

/// What is wrong with a line, and what its `found` and `expected` are.
enum class RecordFault : std::uint8_t {
    NotARecord,    ///< nothing
    ForeignText,   ///< characters of a text's end with text after them: the first one
    OtherFormat,   ///< a record of the other format
    Digit,         ///< no hexadecimal digit: the character, and the column from 1 on
    Digits,        ///< the number of digits of the line, and that of its count
    CountTooLow,   ///< the count, and the lowest one for the kind of record
    DataSize,      ///< the number of data bytes, and that of the kind of record
    Checksum,      ///< the checksum of the record, and that of its bytes
    Type,          ///< the type byte of Intel HEX, the type character of an S-record
    Address,       ///< the address field of a record that has none
    AddressSpace,  ///< the address of data that passes the end of the address space
    AfterEnd,      ///< the number of data bytes after the end record
    RecordCount,   ///< the count of the record, and the number of data records before it
    InRemark,      ///< a remark that is a whole record but for its mark: nothing
    WordCut        ///< the number of data bytes, and that of the words which addresses count
};

/// A line of a file is damaged; no image is made of the file.
struct LineDamaged {
    std::string_view file;
    InputFormat format;
    std::uint64_t lineNumber;
    std::string_view line;
    RecordFault fault;
    std::uint64_t found;
    std::uint64_t expected;
    bool operator==(const LineDamaged&) const = default;
};

/// More lines are damaged than were reported one by one.
struct LinesDamaged {
    std::string_view file;
    RecordFault fault;  ///< of the first of them
    std::uint64_t count;
    bool operator==(const LinesDamaged&) const = default;
};

/// What the formats do not have and costs no data.
enum class Tolerance : std::uint8_t {
    BlankLine,
    TrailingBlank,
    LoneReturn,      ///< a carriage return alone ends a line
    TextEndMark,     ///< bytes 0x1A after the text
    NulBytes,        ///< zero bytes after the text
    LowerCase,       ///< digits in lower case
    Utf8Mark,        ///< a byte order mark in front of the text
    Remark,          ///< a line with the first characters of a remark
    SymbolTable,     ///< symbols between lines that begin with "$$"
    SegmentBorder,   ///< a record goes on after the last address that its field can express
    RecordAfterEnd,  ///< a record without data after the end record
    EndAddress       ///< an end record of Intel HEX has an address
};
inline constexpr std::size_t toleranceCount = 12;

/// Lines of a file are not as the format wants them; all their data is used.
struct LinesTolerated {
    std::string_view file;
    Tolerance tolerance;
    std::uint64_t count;
    std::uint64_t firstLine;
    bool operator==(const LinesTolerated&) const = default;
};

/// A file has no end record; all its data is used.
struct EndMissing {
    std::string_view file;
    InputFormat format;
    bool operator==(const EndMissing&) const = default;
};

/// A file is neither Intel HEX nor S-records; no image is made of it.
struct FormatForeign {
    std::string_view file;
    std::optional<InputFormat> format;  ///< nothing for one that is not read
    std::string_view foreign = {};      ///< what such a file is, with an article, if it is known
    bool operator==(const FormatForeign&) const = default;
};

/// A file names two start addresses, of which the later one is used.
struct StartAddressesDiffer {
    std::string_view file;
    std::uint64_t earlier;
    std::uint64_t earlierLine;
    std::uint64_t later;
    std::uint64_t laterLine;
    bool operator==(const StartAddressesDiffer&) const = default;
};

/// A file gives a range of addresses, which ends before `end`, a second time.
struct RecordsOverlap {
    std::string_view file;
    std::uint64_t start;
    std::uint64_t end;
    std::uint64_t earlierLine;  ///< which gave `start` before
    std::uint64_t laterLine;    ///< which gives `start` again
    bool operator==(const RecordsOverlap&) const = default;
};

/// The same with other bytes, of which the later ones are used.
struct RecordsConflict {
    std::string_view file;
    std::uint64_t start;
    std::uint64_t end;
    std::uint64_t address;     ///< the first one with two values
    std::uint8_t earlierByte;  ///< at that address, as the other fields
    std::uint64_t earlierLine;
    std::uint8_t laterByte;
    std::uint64_t laterLine;
    bool operator==(const RecordsConflict&) const = default;
};

/// A file has more ranges of the kind than were reported one by one.
struct FurtherOverlaps {
    std::string_view file;
    bool areConflicts;
    std::uint64_t count;
    bool operator==(const FurtherOverlaps&) const = default;
};

/// A file gives addresses again, and its data begins where it would if its addresses counted words
/// of `unit` bytes, or it is for a machine whose addresses do. They are used as addresses of bytes;
/// of those that are given again, the later ones.
struct AddressesCountWords {
    std::string_view file;
    std::uint32_t unit;
    bool isByMachine = false;
    bool operator==(const AddressesCountWords&) const = default;
};

using FieldFact = std::variant<LineDamaged, LinesDamaged, LinesTolerated, EndMissing, FormatForeign,
                               StartAddressesDiffer, RecordsOverlap, RecordsConflict,
                               FurtherOverlaps, AddressesCountWords>;

}  // namespace Facts
