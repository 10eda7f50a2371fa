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

std::vector<FolderEntry> entriesOf(const std::string& folder, std::size_t most) {
    std::vector<FolderEntry> entries;
    std::error_code error;
    std::filesystem::directory_iterator entry(folder.empty() ? "." : folder, error);
    for (; !error && entry != std::filesystem::directory_iterator() && entries.size() < most;
         entry.increment(error)) {
        std::error_code unknown;
        entries.push_back({entry->path().filename().string(), entry->is_directory(unknown)});
    }
    return entries;
}

std::string absolutePath(const std::string& path) {
    std::error_code error;
    const auto absolute = std::filesystem::absolute(path, error);
    return error ? path : absolute.lexically_normal().string();
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
