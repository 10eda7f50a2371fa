#include "io/formats/AnyFile.hpp"

#include <utility>

#include "facts/Listener.hpp"
#include "io/InFile.hpp"
#include "io/formats/FormatDetection.hpp"
#include "io/formats/InputFormats.hpp"

namespace Io::Formats {

AnyFile openAny(const std::string& path, std::optional<Facts::InputFormat> given,
                Import::RecordVisitor* visitor, const Import::ReadOptions& options) {
    Platform::InputFile file = openInput(path);
    const Detected detected = given ? Detected{given, {}} : formatOf(path, file);
    AnyFile any{detected.format, file.size(), nullptr};
    if (any.format)
        any.reader = rowOf(*any.format).open(path, std::move(file), options, visitor);
    else
        Facts::report(Facts::FormatForeign{path, std::nullopt, detected.foreign});
    return any;
}

}  // namespace Io::Formats
