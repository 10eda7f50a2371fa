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
std::wstring plain(std::wstring full) {
    constexpr std::wstring_view literal = L"\\\\?\\";
    constexpr std::wstring_view share = L"UNC\\";
    if (!full.starts_with(literal)) return full;
    full.erase(0, literal.size());
    if (full.starts_with(share)) full.replace(0, share.size(), L"\\\\");
    return full;
}

/// The length of the name of the drive or of the share, "\\server\share", that a whole path begins
/// with. The library takes a share for a folder.
std::size_t rootSize(std::wstring_view whole) {
    constexpr std::wstring_view share = L"\\\\";
    std::size_t end = whole.find(L'\\');
    if (whole.starts_with(share)) {
        end = std::min(whole.find(L'\\', share.size()), whole.size() - 1);
        end = whole.find(L'\\', end + 1);
    }
    return std::min(end, whole.size());
}

/// Folders, drives and shares are the same in upper and in lower case.
bool isSameName(const std::filesystem::path& one, const std::filesystem::path& other) {
    return ::CompareStringOrdinal(one.c_str(), -1, other.c_str(), -1, TRUE) == CSTR_EQUAL;
}

}  // namespace

std::vector<FolderEntry> entriesOf(const std::string& folder, std::size_t most) {
    std::vector<FolderEntry> entries;
    std::error_code error;
    std::filesystem::directory_iterator entry(systemPath(folder.empty() ? "." : folder), error);
    for (; !error && entry != std::filesystem::directory_iterator() && entries.size() < most;
         entry.increment(error)) {
        std::error_code unknown;
        entries.push_back(
            {narrowText(entry->path().filename().native()), entry->is_directory(unknown)});
    }
    return entries;
}

std::string absolutePath(const std::string& path) {
    std::error_code error;
    const auto absolute = std::filesystem::absolute(wideText(path), error);
    return error ? path : narrowText(absolute.lexically_normal().native());
}

std::string portablePath(const std::string& path) {
    const std::filesystem::path given(wideText(path));
    // A path may begin at the root of the current drive, or in the current folder of another one.
    if (!given.has_root_path()) return path;
    std::wstring whole = plain(fullPath(path));
    const std::wstring folder = plain(fullPath("."));
    const std::size_t root = rootSize(whole);
    if (!isSameName(whole.substr(0, root), folder.substr(0, rootSize(folder)))) {
        std::ranges::replace(whole, L'\\', L'/');
        return narrowText(whole);
    }
    const std::filesystem::path inWhole(whole.substr(root));
    const std::filesystem::path inFolder(folder.substr(root));
    auto [name, current] =
        std::mismatch(inWhole.begin(), inWhole.end(), inFolder.begin(), inFolder.end(), isSameName);
    std::filesystem::path seen;
    for (; current != inFolder.end(); ++current)
        if (!current->empty()) seen /= L"..";
    for (; name != inWhole.end(); ++name) seen /= *name;
    return seen.empty() ? "." : narrowText(seen.generic_wstring());
}

std::string besideProgram(const std::string& path) {
    // The longest path that there is.
    constexpr unsigned long longest = 32'768;
    std::wstring program(longest, L'\0');
    program.resize(::GetModuleFileNameW(nullptr, program.data(), longest));
    if (program.empty()) return {};
    const std::filesystem::path folder = std::filesystem::path(program).parent_path();
    return narrowText((folder / wideText(path)).lexically_normal().wstring());
}

}  // namespace Platform
