#pragma once

#include <optional>
#include <string_view>

#include "facts/InputFormat.hpp"
#include "platform/Files.hpp"

namespace Io::Field {

/// Nearly all of it is text in UTF-8: of 64 bytes, no more than one is anything else. Zero bytes
/// at its end do not count.
bool isText(std::string_view piece);

/// The first line that is neither empty nor a remark, without a byte order mark and without blanks
/// at its ends; empty if there is none.
std::string_view firstContentOf(std::string_view text);

/// The format of the records of a file, damaged or not; nothing if it is not a file of records.
///
/// A file has records if most of it is lines that begin as records do, indented or not, or that are
/// records but for their lost beginning. A text has them if one of its lines begins as a record
/// does, wherever it is. A file that is neither has none, whatever its bytes look like.
std::optional<Facts::InputFormat> recordFormatIn(const Platform::InputFile& file);

}  // namespace Io::Field
