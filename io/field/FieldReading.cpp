#include "io/field/FieldReading.hpp"

#include "io/import/GenericInFile.hpp"

namespace Io::Field {

std::unique_ptr<Import::TessaronImportApi> FieldReading::open(const std::string& path) const {
    return std::make_unique<Import::GenericInFile>(path);
}

}  // namespace Io::Field
