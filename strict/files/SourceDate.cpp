#include "strict/files/SourceDate.hpp"

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <string_view>

#include "io/Host.hpp"

namespace Strict {

std::optional<std::string> sourceDate() {
    constexpr std::int64_t latest = 253'402'300'799;
    const char* const variable = std::getenv("SOURCE_DATE_EPOCH");
    if (variable == nullptr) return std::nullopt;
    const std::string_view text = variable;
    std::int64_t seconds = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), seconds);
    const bool isWhole = end.ec == std::errc() && end.ptr == text.data() + text.size();
    if (!isWhole || seconds < 0 || seconds > latest) return std::nullopt;
    const auto time = static_cast<std::time_t>(seconds);
    return Io::timeText(*std::gmtime(&time));
}

}  // namespace Strict
