#pragma once

#include <optional>
#include <string>

#include "facts/InputFormat.hpp"
#include "platform/Files.hpp"

namespace Io::Formats {

/// The format of a file: the one whose mark it begins with, or that of its first record, wherever
/// it is. A file with neither is raw, unless each of its lines begins as a record does or `path`
/// ends as those of record files do: nothing then. An empty file is raw.
std::optional<Facts::InputFormat> formatOf(const std::string& path,
                                           const Platform::InputFile& file);

}  // namespace Io::Formats
