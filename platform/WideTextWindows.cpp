#include "platform/WideText.hpp"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

namespace Platform {

namespace {

/// Longer paths need the prefix: MAX_PATH less a short name, which a folder must leave room for.
constexpr std::size_t longestPlainPath = 247;

/// The text of a code page in UTF-16, or nothing if it is not valid.
std::wstring converted(std::string_view text, unsigned codePage, unsigned long flags) {
    const int size = static_cast<int>(text.size());
    const int wideSize = ::MultiByteToWideChar(codePage, flags, text.data(), size, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(std::max(wideSize, 0)), L'\0');
    ::MultiByteToWideChar(codePage, flags, text.data(), size, wide.data(), wideSize);
    return wide;
}

}  // namespace

std::wstring wideText(std::string_view text) {
    if (text.empty()) return {};
    std::wstring wide = converted(text, CP_UTF8, MB_ERR_INVALID_CHARS);
    return wide.empty() ? converted(text, CP_ACP, 0) : wide;
}

std::string narrowText(std::wstring_view text) {
    if (text.empty()) return {};
    const int size = static_cast<int>(text.size());
    const int narrowSize =
        ::WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(narrowSize), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, text.data(), size, narrow.data(), narrowSize, nullptr,
                          nullptr);
    return narrow;
}

std::wstring fullPath(std::string_view path) {
    const std::wstring given = wideText(path);
    const unsigned long size = ::GetFullPathNameW(given.c_str(), 0, nullptr, nullptr);
    if (given.empty() || size == 0) return {};
    std::wstring full(size, L'\0');
    full.resize(::GetFullPathNameW(given.c_str(), size, full.data(), nullptr));
    return full;
}

std::wstring systemPath(std::string_view path) {
    std::wstring full = fullPath(path);
    constexpr std::wstring_view devices = L"\\\\.\\";
    constexpr std::wstring_view literal = L"\\\\?\\";
    constexpr std::wstring_view share = L"\\\\";
    if (full.size() <= longestPlainPath || full.starts_with(devices) || full.starts_with(literal))
        return wideText(path);
    if (full.starts_with(share)) return L"\\\\?\\UNC\\" + full.substr(share.size());
    return std::wstring(literal) + full;
}

int errorNumber(unsigned long error) {
    static constexpr std::array numbers{std::pair{ERROR_FILE_NOT_FOUND, ENOENT},
                                        std::pair{ERROR_PATH_NOT_FOUND, ENOENT},
                                        std::pair{ERROR_INVALID_DRIVE, ENOENT},
                                        std::pair{ERROR_BAD_NETPATH, ENOENT},
                                        std::pair{ERROR_BAD_NET_NAME, ENOENT},
                                        std::pair{ERROR_BAD_PATHNAME, ENOENT},
                                        std::pair{ERROR_NOT_READY, ENXIO},
                                        std::pair{ERROR_INVALID_NAME, EINVAL},
                                        std::pair{ERROR_DIRECTORY, ENOTDIR},
                                        std::pair{ERROR_ACCESS_DENIED, EACCES},
                                        std::pair{ERROR_WRITE_PROTECT, EROFS},
                                        std::pair{ERROR_SHARING_VIOLATION, EBUSY},
                                        std::pair{ERROR_LOCK_VIOLATION, EBUSY},
                                        std::pair{ERROR_FILE_EXISTS, EEXIST},
                                        std::pair{ERROR_ALREADY_EXISTS, EEXIST},
                                        std::pair{ERROR_DISK_FULL, ENOSPC},
                                        std::pair{ERROR_HANDLE_DISK_FULL, ENOSPC},
                                        std::pair{ERROR_FILENAME_EXCED_RANGE, ENAMETOOLONG},
                                        std::pair{ERROR_NOT_ENOUGH_MEMORY, ENOMEM},
                                        std::pair{ERROR_TOO_MANY_OPEN_FILES, EMFILE},
                                        std::pair{ERROR_BROKEN_PIPE, EPIPE},
                                        std::pair{ERROR_NO_DATA, EPIPE},
                                        std::pair{ERROR_CANT_RESOLVE_FILENAME, ELOOP}};
    for (const auto& [known, number] : numbers)
        if (static_cast<unsigned long>(known) == error) return number;
    return EIO;
}

void noteLastError() {
    errno = errorNumber(::GetLastError());
}

}  // namespace Platform
