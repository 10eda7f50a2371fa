#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// Marks that keep the places of values free while a script is prepared: what SUBSTITUTE and other
/// variables replace has no part in a value, and nothing in a value is a remark or a directive.
namespace Strict::ValueMark {

/// The character that a mark begins with. A script that has marks has it nowhere else.
constexpr char sign = '\x01';

/// Bytes of a mark.
constexpr std::size_t length = 8;

/// The mark of a value. It has no character of a word and no blank.
///
/// @param number  below 2^28
std::string of(std::size_t number);

/// The number of the mark that a text begins with, or nothing if it begins with none.
std::optional<std::size_t> numberIn(std::string_view text);

}  // namespace Strict::ValueMark
