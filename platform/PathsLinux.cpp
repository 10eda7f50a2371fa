#include "platform/Paths.hpp"

#include <filesystem>
#include <system_error>

namespace Platform {

const char pathSeparator = '/';

std::size_t fileNameStart(const std::string& path) {
    // Without a separator the sum is 0.
    return path.rfind('/') + 1;
}

bool isRegularFile(const std::string& path) {
    std::error_code error;
    return std::filesystem::is_regular_file(path, error);
}

std::string portablePath(const std::string& path) {
    const std::filesystem::path given(path);
    if (!given.is_absolute()) return path;
    std::error_code error;
    const auto folder = std::filesystem::current_path(error);
    return error ? path : given.lexically_proximate(folder).generic_string();
}

std::string besideProgram(const std::string& path) {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? "" : (program.parent_path() / path).lexically_normal().string();
}

}  // namespace Platform
