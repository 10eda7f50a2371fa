#pragma once

#include <optional>
#include <string_view>

#include "facts/InputFormat.hpp"
#include "platform/Files.hpp"

namespace Io::Field {

/// The byte order mark of UTF-8, which editors put at the beginning of a file.
inline constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";

/// The format of which `line` is a record, damaged or not: it begins as one, and eight digits
/// follow.
std::optional<Facts::InputFormat> recordFormatOf(std::string_view line);

/// The format of the first record of a file, wherever it is; nothing if there is none.
std::optional<Facts::InputFormat> firstRecordFormatOf(const Platform::InputFile& file);

/// Every line of a file's beginning begins as a record does, or is a remark or empty, and there is
/// one that begins as a record.
bool beginsAsRecords(const Platform::InputFile& file);

}  // namespace Io::Field
