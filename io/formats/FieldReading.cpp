#include "io/formats/FieldReading.hpp"

#include <utility>

#include "facts/Listener.hpp"
#include "io/InFile.hpp"
#include "io/formats/FormatDetection.hpp"
#include "io/formats/InputFormats.hpp"

namespace Io::Formats {

std::unique_ptr<Import::TessaronImportApi> FieldReading::open(
    const std::string& path, const Import::ReadOptions& options) const {
    Platform::InputFile file = openInput(path);
    const auto [format, foreign] = formatOf(path, file);
    const bool isOwn =
        format && (isOfRecords(rowOf(*format)) || *format == Facts::InputFormat::RawBinary);
    if (!isOwn) {
        Facts::report(Facts::FormatForeign{path, format, foreign});
        return nullptr;
    }
    return rowOf(*format).open(path, std::move(file), options, nullptr);
}

}  // namespace Io::Formats
