#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "facts/InputFormat.hpp"
#include "platform/Files.hpp"

namespace Io::Formats {

/// What a file is.
struct Detected {
    std::optional<Facts::InputFormat> format;  ///< nothing for a file that is not read
    /// What such a file is, with an article; empty for one with the name of a file of records and
    /// without a record.
    std::string_view foreign;
    bool operator==(const Detected&) const = default;
};

/// The format of a file, from the surest sign to the weakest:
///
/// 1. the mark of a binary format that it begins with,
/// 2. a whole sound record that it begins with as a text,
/// 3. the ending of `path`, if only files of one format have it,
/// 4. the mark of a text format,
/// 5. its records, damaged or not (Field::recordFormatIn).
///
/// Any other file is raw, and so is an empty one. A text format's own ending comes before all but
/// the first two; the endings of record files name a file of records in either format.
Detected formatOf(const std::string& path, const Platform::InputFile& file);

}  // namespace Io::Formats
