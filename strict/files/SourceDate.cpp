#include "strict/files/SourceDate.hpp"

#include <charconv>
#include <cstdlib>
#include <ctime>
#include <string_view>

#include "io/Host.hpp"

namespace Strict {

std::optional<std::int64_t> sourceDateSeconds() {
    constexpr std::int64_t latest = 253'402'300'799;
    const char* const variable = std::getenv("SOURCE_DATE_EPOCH");
    if (variable == nullptr) return std::nullopt;
    const std::string_view text = variable;
    std::int64_t seconds = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), seconds);
    const bool isWhole = end.ec == std::errc() && end.ptr == text.data() + text.size();
    if (!isWhole || seconds < 0 || seconds > latest) return std::nullopt;
    return seconds;
}

std::optional<std::string> sourceDate() {
    const auto seconds = sourceDateSeconds();
    if (!seconds) return std::nullopt;
    const auto time = static_cast<std::time_t>(*seconds);
    return Io::timeText(*std::gmtime(&time));
}

std::optional<std::string> sourceTimestamp() {
    auto text = sourceDate();
    if (!text) return text;
    text->at(text->find(' ')) = 'T';
    return *text + 'Z';
}

}  // namespace Strict
