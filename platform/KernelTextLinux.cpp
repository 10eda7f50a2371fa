#include "platform/KernelText.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>

namespace Platform {

std::string kernelText(const std::string& path) {
    std::array<char, 4096> text{};
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return {};
    const ssize_t length = ::read(file, text.data(), text.size());
    ::close(file);
    return {text.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0))};
}

std::uint64_t numberAfter(std::string_view text, std::string_view label) {
    const std::size_t at = text.find(label);
    if (at == std::string_view::npos) return unknownNumber;
    const std::size_t digit = text.find_first_of("0123456789", at + label.size());
    if (digit == std::string_view::npos) return unknownNumber;
    std::uint64_t number = unknownNumber;
    std::from_chars(text.data() + digit, text.data() + text.size(), number);
    return number;
}

}  // namespace Platform
