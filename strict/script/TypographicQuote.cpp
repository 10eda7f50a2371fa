#include "strict/script/TypographicQuote.hpp"

#include <array>

namespace Strict {

namespace {

struct Quote {
    std::string_view sign;  ///< in UTF-8
    char plain;
};

constexpr std::array quotes{Quote{"\xE2\x80\x9C", '"'},  Quote{"\xE2\x80\x9D", '"'},
                            Quote{"\xE2\x80\x9E", '"'},  Quote{"\xC2\xAB", '"'},
                            Quote{"\xC2\xBB", '"'},      Quote{"\xE2\x80\x98", '\''},
                            Quote{"\xE2\x80\x99", '\''}, Quote{"\xE2\x80\x9A", '\''},
                            Quote{"\xE2\x80\xB9", '\''}, Quote{"\xE2\x80\xBA", '\''}};

bool beginsWord(std::string_view text, std::size_t at) {
    constexpr std::string_view before = " \t\n\v\f\r{(,;=";
    return at == 0 || before.find(text[at - 1]) != std::string_view::npos;
}

}  // namespace

std::optional<TypographicQuote> typographicQuoteIn(std::string_view text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (static_cast<unsigned char>(text[at]) <= 0x7F || !beginsWord(text, at)) continue;
        for (const Quote& quote : quotes)
            if (text.substr(at).starts_with(quote.sign))
                return TypographicQuote{at, quote.sign.size(), quote.plain};
    }
    return std::nullopt;
}

}  // namespace Strict
