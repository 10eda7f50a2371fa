#pragma once

#include <memory>
#include <string>

#include "io/import/InputReading.hpp"

/// Reading of text formats as files in the field have them: whatever other tools read without loss
/// is read, and whatever could hide lost data is reported.
namespace Io::Field {

/// Reads a file by FieldInFile. Returns null if the file is damaged.
class FieldReading final : public Import::InputReading {
public:
    std::unique_ptr<Import::TessaronImportApi> open(const std::string& path) const override;
};

}  // namespace Io::Field
