#include "io/field/FieldReading.hpp"

#include <utility>

#include "facts/Listener.hpp"
#include "io/InFile.hpp"
#include "io/field/FieldFormat.hpp"
#include "io/field/FieldInFile.hpp"
#include "io/import/RawBinaryInFile.hpp"

namespace Io::Field {

std::unique_ptr<Import::TessaronImportApi> FieldReading::open(const std::string& path,
                                                              Buffer::OverlapRule rule) const {
    Platform::InputFile file = openInput(path);
    const FieldFormat format = fieldFormatOf(path, file);
    if (const auto* foreign = std::get_if<Facts::ForeignFormat>(&format)) {
        Facts::report(Facts::FormatForeign{path, *foreign});
        return nullptr;
    }
    const auto* records = std::get_if<Facts::RecordFormat>(&format);
    if (records == nullptr) return std::make_unique<Import::RawBinaryInFile>(path, std::move(file));
    auto reader = std::make_unique<FieldInFile>(path, std::move(file), *records, rule);
    if (reader->isDamaged()) return nullptr;
    return reader;
}

}  // namespace Io::Field
