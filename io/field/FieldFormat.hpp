#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "facts/FieldFacts.hpp"
#include "platform/Files.hpp"

namespace Io::Field {

/// A file that is read as raw bytes.
struct RawFormat {
    bool operator==(const RawFormat&) const = default;
};

using FieldFormat = std::variant<Facts::RecordFormat, Facts::ForeignFormat, RawFormat>;

/// The format of which `line` is a record, damaged or not: it begins as one, and eight digits
/// follow.
std::optional<Facts::RecordFormat> recordFormatOf(std::string_view line);

/// The format of a file: that of its first record, wherever it is. A file without a record is raw,
/// unless each of its lines begins as a record does or `path` ends as those of text files do. An
/// empty file is raw.
FieldFormat fieldFormatOf(const std::string& path, const Platform::InputFile& file);

}  // namespace Io::Field
