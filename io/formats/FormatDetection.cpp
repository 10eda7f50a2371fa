#include "io/formats/FormatDetection.hpp"

#include <algorithm>
#include <array>
#include <cstddef>

#include "io/field/FieldFormat.hpp"
#include "io/formats/InputFormats.hpp"

namespace Io::Formats {

namespace {

using Facts::InputFormat;

/// `path` ends as those of the formats do that FROM_FILE recognises.
bool hasRecordName(const std::string& path) {
    const InputFormatRow* const named = rowByEnding(path);
    return named != nullptr && named->keyword == nullptr;
}

}  // namespace

std::optional<InputFormat> formatOf(const std::string& path, const Platform::InputFile& file) {
    if (file.size() == 0) return InputFormat::RawBinary;
    std::array<char, 256> head{};
    const std::size_t size = file.readAt(0, head);
    for (const InputFormatRow& row : inputFormats())
        if (row.looksLike != nullptr && row.looksLike({head.data(), size})) return row.format;
    if (const auto format = Field::firstRecordFormatOf(file)) return format;
    if (Field::beginsAsRecords(file) || hasRecordName(path)) return std::nullopt;
    return InputFormat::RawBinary;
}

}  // namespace Io::Formats
