#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "facts/InputFormat.hpp"

/// What one line of a text file is, by itself.
namespace Io::Field {

/// Characters of the longest record, the 514 of an S-record and the 521 of Intel HEX among them.
inline constexpr std::size_t longestRecord = 528;

/// The line without blanks, and without what ends a text, at its ends.
std::string_view withoutBlanks(std::string_view line);

/// Characters of the mark that makes a line, which is not empty, a remark; 0 if it is none.
std::size_t remarkMark(std::string_view line);

/// The format of which `line` is a record, damaged or not: it begins as one, and eight digits
/// follow.
std::optional<Facts::InputFormat> recordFormatOf(std::string_view line);

/// The same for a line of which one digit is enough, so that it may be one of another text.
std::optional<Facts::InputFormat> beginningOf(std::string_view line);

/// The format of which `line` is a whole record, with the right count and checksum.
std::optional<Facts::InputFormat> soundFormatOf(std::string_view line);

/// The format of which `digits` would be a whole record if the colon, or the "S" with or without
/// the digit after it, were in front of them.
std::optional<Facts::InputFormat> strippedFormatOf(std::string_view digits);

/// The text after the mark of a remark is a whole record of one of the formats. The mark may be
/// what damage made of a colon: ";" and "*" differ from it in one bit.
bool isMarkedRecord(std::string_view text);

}  // namespace Io::Field
