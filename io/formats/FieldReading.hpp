#pragma once

#include <memory>
#include <string>

#include "io/import/InputReading.hpp"

namespace Io::Formats {

/// Reads Intel HEX and S-records as files in the field have them: whatever other tools read without
/// loss is read, and whatever could hide lost data is reported. A file without any record is read
/// as raw bytes. Null, after a report, for a damaged file and for one of a format that has a source
/// of its own.
class FieldReading final : public Import::InputReading {
public:
    std::unique_ptr<Import::TessaronImportApi> open(
        const std::string& path, const Import::ReadOptions& options) const override;
};

}  // namespace Io::Formats
