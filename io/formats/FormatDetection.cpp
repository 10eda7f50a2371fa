#include "io/formats/FormatDetection.hpp"

#include <algorithm>
#include <array>
#include <cstddef>

#include "io/field/FieldFormat.hpp"
#include "io/field/RecordLine.hpp"
#include "io/formats/ForeignFormats.hpp"
#include "io/formats/InputFormats.hpp"

namespace Io::Formats {

namespace {

using Facts::InputFormat;

/// The format with the mark that a file begins with, of the text formats or of the others.
std::optional<Detected> markedFormat(std::string_view head, bool isText) {
    for (const InputFormatRow& row : inputFormats())
        if (isText == (row.walk != nullptr) && row.looksLike != nullptr && row.looksLike(head))
            return Detected{row.format, {}};
    for (const ForeignFormat& foreign : foreignFormats())
        if (isText == foreign.isText && foreign.looksLike(head))
            return Detected{std::nullopt, foreign.name};
    return std::nullopt;
}

std::optional<Detected> foreignByEnding(std::string_view path) {
    for (const ForeignFormat& foreign : foreignFormats())
        if (hasEnding(path, foreign.endings)) return Detected{std::nullopt, foreign.name};
    return std::nullopt;
}

/// The format of a text by its beginning alone.
std::optional<Detected> soundRecordFormat(std::string_view head) {
    if (const auto format = Field::soundFormatOf(Field::firstContentOf(head)))
        return Detected{format, {}};
    return std::nullopt;
}

/// The row whose files alone have the ending of `path`, or null.
const InputFormatRow* rowByOwnEnding(std::string_view path) {
    const InputFormatRow* const row = rowByEnding(path);
    return row != nullptr && hasEnding(path, row->endings) ? row : nullptr;
}

}  // namespace

Detected formatOf(const std::string& path, const Platform::InputFile& file) {
    if (file.size() == 0) return {InputFormat::RawBinary, {}};
    std::array<char, 4096> buffer{};
    const std::string_view head(buffer.data(), file.readAt(0, buffer));
    const bool isText = Field::isText(head);
    if (const auto marked = markedFormat(head, false)) return *marked;
    if (isText)
        if (const auto sound = soundRecordFormat(head)) return *sound;
    const InputFormatRow* const named = rowByOwnEnding(path);
    const bool isNamed = named != nullptr && !isOfRecords(*named);
    if (isNamed) return {named->format, {}};
    if (isText)
        if (const auto marked = markedFormat(head, true)) return *marked;
    if (const auto foreign = foreignByEnding(path)) return *foreign;
    if (const auto records = Field::recordFormatIn(file)) return {records, {}};
    if (named != nullptr) return {};
    return {InputFormat::RawBinary, {}};
}

}  // namespace Io::Formats
