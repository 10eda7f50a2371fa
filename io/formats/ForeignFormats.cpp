#include "io/formats/ForeignFormats.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "io/field/FieldFormat.hpp"
#include "io/field/RecordLine.hpp"
#include "util/Hex.hpp"

namespace Io::Formats {

namespace {

constexpr std::string_view blanks = " \t\r\n\v\f";

std::string lowered(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return lower;
}

std::string_view withoutLeadingBlanks(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(blanks), text.size()));
}

bool isDecimal(char c) {
    return c >= '0' && c <= '9';
}

bool isArchive(std::string_view head) {
    return head.starts_with("!<arch>\n") || head.starts_with("!<thin>\n");
}

/// Tektronix hexadecimal: "/", the address in four digits, the number of bytes in two, and the sum
/// of these six digits in two.
bool isTektronix(std::string_view head) {
    const std::string_view line = Field::firstContentOf(head);
    constexpr std::size_t digits = 6;
    if (!line.starts_with('/') || line.size() < 1 + digits + 2) return false;
    std::array<std::uint8_t, digits / 2 + 1> bytes{};
    if (!Util::readHex(bytes.data(), line.data() + 1, bytes.size())) return false;
    unsigned sum = 0;
    for (std::size_t i = 0; i < digits / 2; ++i) sum += (bytes[i] >> 4U) + (bytes[i] & 0xFU);
    return sum == bytes.back();
}

/// Extended Tektronix hexadecimal: "%", the number of the characters after it in two digits, the
/// type 3, 6 or 8, and the sum in two digits.
bool isExtendedTektronix(std::string_view head) {
    const std::string_view line = Field::firstContentOf(head);
    constexpr std::size_t shortest = 6;
    constexpr std::size_t typeAt = 3;
    constexpr std::string_view types = "368";
    if (!line.starts_with('%') || line.size() < shortest) return false;
    std::uint8_t count = 0;
    std::uint8_t sum = 0;
    return Util::readHex(&count, line.data() + 1, 1) && count == line.size() - 1 &&
           types.find(line[typeAt]) != std::string_view::npos &&
           Util::readHex(&sum, line.data() + typeAt + 1, 1);
}

/// Memory initialization file of FPGA tools: "WIDTH = 8; DEPTH = 256;", then "CONTENT BEGIN".
bool isMif(std::string_view head) {
    const std::string text = lowered(head);
    constexpr std::string_view content = "content";
    constexpr std::string_view begin = "begin";
    const std::size_t at = text.find(content);
    if (at == std::string::npos) return false;
    std::string_view after =
        withoutLeadingBlanks(std::string_view(text).substr(at + content.size()));
    if (!after.starts_with(begin)) return false;
    after.remove_prefix(begin.size());
    const std::string_view before = std::string_view(text).substr(0, at);
    const bool hasSizes = before.find("width") != std::string_view::npos ||
                          before.find("depth") != std::string_view::npos;
    return hasSizes && before.find('=') != std::string_view::npos &&
           (after.empty() || blanks.find(after.front()) != std::string_view::npos);
}

/// Coefficient file of FPGA tools.
bool isCoe(std::string_view head) {
    return lowered(head).find("memory_initialization_") != std::string::npos;
}

/// An array of C with numbers: "]", "=", "{" and a digit, with no end of a statement in between.
bool isArrayOfC(std::string_view head) {
    for (std::size_t at = head.find('='); at != std::string_view::npos;
         at = head.find('=', at + 1)) {
        const std::string_view before = head.substr(0, at);
        const std::size_t bracket = before.rfind(']');
        const bool isArray = bracket != std::string_view::npos &&
                             before.find_first_of(";{}", bracket) == std::string_view::npos;
        std::string_view after = withoutLeadingBlanks(head.substr(at + 1));
        if (!isArray || !after.starts_with('{')) continue;
        after = withoutLeadingBlanks(after.substr(1));
        if (!after.empty() && isDecimal(after.front())) return true;
    }
    return false;
}

/// The text whose characters are the bytes at one place of each unit, the others of which are 0;
/// nothing if there are others. A mark in front is left out.
std::optional<std::string> narrowed(std::string_view head, std::size_t unit, std::size_t place) {
    if (head.size() < 2 * unit) return std::nullopt;
    std::string narrow;
    for (std::size_t at = 0; at + unit <= head.size(); at += unit) {
        std::string_view others = head.substr(at, unit);
        narrow += others[place];
        if (others.find_first_not_of('\0') < place) return std::nullopt;
        others.remove_prefix(place + 1);
        if (others.find_first_not_of('\0') != std::string_view::npos) return std::nullopt;
    }
    return narrow;
}

/// A text in UTF-16 or UTF-32 that begins with a byte order mark, or with a record. Only characters
/// of ASCII are in it.
template <std::size_t unit>
bool isWideText(std::string_view head) {
    for (const bool isBigEndian : {false, true}) {
        std::string mark(unit, '\0');
        mark[isBigEndian ? unit - 2 : 0] = isBigEndian ? '\xFE' : '\xFF';
        mark[isBigEndian ? unit - 1 : 1] = isBigEndian ? '\xFF' : '\xFE';
        const bool isMarked = head.starts_with(mark);
        const auto narrow =
            narrowed(head.substr(isMarked ? unit : 0), unit, isBigEndian ? unit - 1 : 0);
        if (!narrow) continue;
        if (isMarked ? Field::isText(*narrow)
                     : Field::beginningOf(Field::firstContentOf(*narrow)).has_value())
            return true;
    }
    return false;
}

constexpr auto tektronixEndings = std::to_array<std::string_view>({".tek"});
constexpr auto mifEndings = std::to_array<std::string_view>({".mif"});
constexpr auto coeEndings = std::to_array<std::string_view>({".coe"});
constexpr auto cEndings = std::to_array<std::string_view>({".c", ".h"});

constexpr auto foreignRows = std::to_array<ForeignFormat>({
    {.name = "an archive of object files", .isText = false, .looksLike = &isArchive},
    {.name = "a text in UTF-16", .isText = false, .looksLike = &isWideText<2>},
    {.name = "a text in UTF-32", .isText = false, .looksLike = &isWideText<4>},
    {.name = "a Tektronix hexadecimal file",
     .endings = tektronixEndings,
     .looksLike = &isTektronix},
    {.name = "an extended Tektronix hexadecimal file", .looksLike = &isExtendedTektronix},
    {.name = "a memory initialization file (MIF)", .endings = mifEndings, .looksLike = &isMif},
    {.name = "a coefficient file (COE)", .endings = coeEndings, .looksLike = &isCoe},
    {.name = "a source file of C", .endings = cEndings, .looksLike = &isArrayOfC},
});

}  // namespace

std::span<const ForeignFormat> foreignFormats() {
    return foreignRows;
}

}  // namespace Io::Formats
