#include "platform/Paths.hpp"

#include <filesystem>
#include <system_error>

#include "platform/WideText.hpp"

namespace Platform {

const char pathSeparator = '\\';

std::size_t fileNameStart(const std::string& path) {
    // Without a separator the sum is 0. A colon ends the name of a drive.
    return path.find_last_of("/\\:") + 1;
}

bool isRegularFile(const std::string& path) {
    std::error_code error;
    return std::filesystem::is_regular_file(systemPath(path), error);
}

std::string portablePath(const std::string& path) {
    const std::filesystem::path given(wideText(path));
    if (!given.is_absolute()) return path;
    std::error_code error;
    const auto folder = std::filesystem::current_path(error);
    return error ? path : narrowText(given.lexically_proximate(folder).generic_wstring());
}

}  // namespace Platform
