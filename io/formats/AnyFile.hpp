#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "facts/InputFormat.hpp"
#include "io/import/ReadOptions.hpp"
#include "io/import/RecordVisitor.hpp"
#include "io/import/TessaronImportApi.hpp"

namespace Io::Formats {

/// A file that was read in whatever format it has.
struct AnyFile {
    std::optional<Facts::InputFormat> format;           ///< nothing for one that is not read
    std::uint64_t size = 0;                             ///< of the file, in bytes
    std::unique_ptr<Import::TessaronImportApi> reader;  ///< null, after a report, without an image
};

/// Opens a file once, and reads it.
///
/// @param given    its format; nothing if name and contents decide
/// @param visitor  learns which records a text file has; null for nobody
/// @throws Io::bad_open
/// @throws Import::Malformed  after a report
AnyFile openAny(const std::string& path, std::optional<Facts::InputFormat> given = {},
                Import::RecordVisitor* visitor = nullptr, const Import::ReadOptions& options = {});

}  // namespace Io::Formats
