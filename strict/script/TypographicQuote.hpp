#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

/// The quotes that text processors put in place of " and '. They are letters to the language.
namespace Strict {

struct TypographicQuote {
    std::size_t at = 0;      ///< bytes from the beginning of the text
    std::size_t length = 0;  ///< bytes
    char plain = '"';        ///< the quote to write instead
};

/// The first typographic quote that begins a word of `text`; one within a word is an apostrophe.
std::optional<TypographicQuote> typographicQuoteIn(std::string_view text);

}  // namespace Strict
