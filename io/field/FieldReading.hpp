#pragma once

#include <memory>
#include <string>

#include "io/import/InputReading.hpp"

/// Reading of text formats as files in the field have them: whatever other tools read without loss
/// is read, and whatever could hide lost data is reported.
namespace Io::Field {

/// Reads Intel HEX and S-records by FieldInFile, and a file without any record as raw bytes. Null
/// for a damaged file and for one of a format that is recognised and not read.
class FieldReading final : public Import::InputReading {
public:
    std::unique_ptr<Import::TessaronImportApi> open(const std::string& path,
                                                    Buffer::OverlapRule rule) const override;
};

}  // namespace Io::Field
