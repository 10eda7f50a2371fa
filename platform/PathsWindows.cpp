#include "platform/Paths.hpp"

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <string_view>
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

namespace {

/// A whole path without the prefix that takes it literally.
std::filesystem::path plain(std::wstring full) {
    constexpr std::wstring_view literal = L"\\\\?\\";
    constexpr std::wstring_view share = L"UNC\\";
    if (!full.starts_with(literal)) return full;
    full.erase(0, literal.size());
    if (full.starts_with(share)) full.replace(0, share.size(), L"\\\\");
    return full;
}

/// Folders and drives are the same in upper and in lower case.
bool isSameName(const std::filesystem::path& one, const std::filesystem::path& other) {
    return ::CompareStringOrdinal(one.c_str(), -1, other.c_str(), -1, TRUE) == CSTR_EQUAL;
}

}  // namespace

std::string portablePath(const std::string& path) {
    const std::filesystem::path given(wideText(path));
    // A path may begin at the root of the current drive, or in the current folder of another one.
    if (!given.has_root_path()) return path;
    const std::filesystem::path whole = plain(fullPath(path));
    const std::filesystem::path folder = plain(fullPath("."));
    auto [name, current] =
        std::mismatch(whole.begin(), whole.end(), folder.begin(), folder.end(), isSameName);
    // Another drive.
    if (name == whole.begin()) return narrowText(whole.generic_wstring());
    std::filesystem::path seen;
    for (; current != folder.end(); ++current)
        if (!current->empty()) seen /= L"..";
    for (; name != whole.end(); ++name) seen /= *name;
    return seen.empty() ? "." : narrowText(seen.generic_wstring());
}

}  // namespace Platform
