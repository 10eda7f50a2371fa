#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Texts of others, such as names of files and symbols, on their way to a terminal or a page.
///
/// A terminal obeys control characters, and invisible or bidirectional format characters let a
/// text read as another one. Both are shown as escapes: "\n", "\t" and "\x1B" below U+0080,
/// "\u202E" above. So is each byte that is not UTF-8, as "\x9B".
namespace Util {

/// The text with escapes for what is not printable.
std::string printable(std::string_view text);

/// The same for a line that columns are counted in: one character for each character that is not
/// printable, a blank for a tab and other controls below U+0080, U+FFFD for the others.
std::string printableColumns(std::string_view text);

/// JSON whose texts have the escapes of JSON for what is not printable. It is valid UTF-8.
std::string printableJson(std::string_view json);

/// The text for HTML and XML: marks are replaced, and all but tabs that is not printable is shown
/// as `printable` does. The result is UTF-8 that XML 1.0 allows.
std::string printableMarkup(std::string_view text);

/// The characters of a text in UTF-8. A byte that continues none counts as part of the one before.
std::size_t characters(std::string_view text);

/// The first or the last characters of a text, up to `most` of them.
std::string_view firstCharacters(std::string_view text, std::size_t most);
std::string_view lastCharacters(std::string_view text, std::size_t most);

}  // namespace Util
