#include "io/field/RecordLine.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <numeric>

#include "io/IntelHexRecord.hpp"
#include "util/Hex.hpp"

namespace Io::Field {

namespace {

using Facts::InputFormat;

constexpr std::string_view hexDigits = "0123456789ABCDEFabcdef";

bool areDigits(std::string_view text, std::size_t count) {
    return text.size() >= count &&
           text.substr(0, count).find_first_not_of(hexDigits) == std::string_view::npos;
}

bool isDecimal(char c) {
    return c >= '0' && c <= '9';
}

/// The format of which `line` is a record if `count` digits after its first characters show that.
std::optional<InputFormat> formatWithDigits(std::string_view line, std::size_t count) {
    if (line.starts_with(':') && areDigits(line.substr(1), count)) return InputFormat::IntelHex;
    const bool isS = line.size() > 2 && (line[0] == 'S' || line[0] == 's') && isDecimal(line[1]);
    if (isS && areDigits(line.substr(2), count)) return InputFormat::MotorolaS;
    return std::nullopt;
}

/// Bytes of two digits each whose sum, with the first one as their number less `uncounted`, is
/// `sum`: a record without its first characters.
bool isRecordBody(std::string_view digits, std::size_t uncounted, std::uint8_t sum) {
    std::array<std::uint8_t, longestRecord / 2> bytes{};
    const std::size_t size = digits.size() / 2;
    const bool isRead = size != 0 && size <= bytes.size() && digits.size() % 2 == 0 &&
                        Util::readHex(bytes.data(), digits.data(), size);
    return isRead && bytes[0] + uncounted == size &&
           static_cast<std::uint8_t>(std::accumulate(bytes.begin(), bytes.end(), 0U)) == sum;
}

bool isIntelBody(std::string_view digits) {
    return isRecordBody(digits, IntelRecord::frameSize, 0);
}

bool isSBody(std::string_view digits) {
    return isRecordBody(digits, 1, 0xFF);
}

}  // namespace

std::string_view withoutBlanks(std::string_view line) {
    using namespace std::string_view_literals;
    constexpr std::string_view ends = " \t\v\f\r\n\x1A\0"sv;
    line.remove_prefix(std::min(line.find_first_not_of(ends), line.size()));
    return line.substr(0, line.find_last_not_of(ends) + 1);
}

std::size_t remarkMark(std::string_view line) {
    constexpr std::string_view marks = "#;*!";
    if (marks.find(line.front()) != std::string_view::npos) return 1;
    return line.starts_with("//") || line.starts_with("/*") ? 2 : 0;
}

std::optional<InputFormat> recordFormatOf(std::string_view line) {
    constexpr std::size_t recordDigits = 8;
    return formatWithDigits(line, recordDigits);
}

std::optional<InputFormat> beginningOf(std::string_view line) {
    return formatWithDigits(line, 1);
}

std::optional<InputFormat> soundFormatOf(std::string_view line) {
    const auto format = recordFormatOf(line);
    if (!format) return std::nullopt;
    const bool isSound =
        *format == InputFormat::IntelHex ? isIntelBody(line.substr(1)) : isSBody(line.substr(2));
    return isSound ? format : std::nullopt;
}

std::optional<InputFormat> strippedFormatOf(std::string_view digits) {
    if (isIntelBody(digits)) return InputFormat::IntelHex;
    const bool isS = isSBody(digits) ||
                     (!digits.empty() && isDecimal(digits.front()) && isSBody(digits.substr(1)));
    return isS ? std::optional(InputFormat::MotorolaS) : std::nullopt;
}

bool isMarkedRecord(std::string_view text) {
    text = text.substr(std::min(text.find_first_not_of(" \t"), text.size()));
    if (text.size() > 2 && text[0] == 'S' && isDecimal(text[1])) return isSBody(text.substr(2));
    if (text.starts_with(':')) text.remove_prefix(1);
    return isIntelBody(text);
}

}  // namespace Io::Field
