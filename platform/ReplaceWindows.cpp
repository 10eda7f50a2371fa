#include "platform/Replace.hpp"

#include <process.h>
#include <windows.h>

#include <array>
#include <cerrno>
#include <memory>
#include <mutex>

#include "platform/Paths.hpp"
#include "platform/WideText.hpp"

namespace Platform {

namespace {

std::error_code errorOf(int number) {
    return {number, std::generic_category()};
}

struct CloseHandle {
    void operator()(HANDLE handle) const { ::CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, CloseHandle>;

/// The real place of what exists, with links and short names followed; empty if it cannot be found
/// out.
std::wstring realPlace(const std::wstring& path) {
    constexpr DWORD shared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    // The flag opens folders as well.
    const HANDLE opened = ::CreateFileW(path.c_str(), 0, shared, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (opened == INVALID_HANDLE_VALUE) return {};
    const Handle handle(opened);
    const DWORD size = ::GetFinalPathNameByHandleW(opened, nullptr, 0, 0);
    std::wstring real(size, L'\0');
    real.resize(::GetFinalPathNameByHandleW(opened, real.data(), size, 0));
    return real;
}

/// There is a folder for the file of a path.
bool hasFolder(const std::string& path) {
    const std::wstring full = fullPath(path);
    const std::wstring folder = full.substr(0, full.find_last_of(L'\\') + 1);
    const DWORD attributes = ::GetFileAttributesW(systemPath(narrowText(folder)).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool isDevice(const std::string& path) {
    return fullPath(path).starts_with(L"\\\\.\\");
}

}  // namespace

OutputTarget outputTarget(const std::string& path) {
    OutputTarget target{TargetKind::Impossible, path, {}};
    if (isDevice(path)) {
        target.kind = TargetKind::Device;
        return target;
    }
    const std::wstring wide = systemPath(path);
    const DWORD attributes = ::GetFileAttributesW(wide.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        const DWORD error = ::GetLastError();
        if (error == ERROR_FILE_NOT_FOUND && fileNameStart(path) != path.size() && hasFolder(path))
            target.kind = TargetKind::Missing;
        else
            target.error = errorOf(path.empty() ? ENOENT : errorNumber(error));
    } else if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        target.error = errorOf(EISDIR);
    } else if ((attributes & FILE_ATTRIBUTE_READONLY) != 0) {
        target.error = errorOf(EACCES);
    } else {
        target.kind = TargetKind::Regular;
    }
    if (target.kind != TargetKind::Regular || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0)
        return target;
    // The link stays, and what it leads to is replaced.
    const std::wstring real = realPlace(wide);
    if (!real.empty()) {
        target.path = narrowText(real);
    } else {
        target.kind = TargetKind::Impossible;
        target.error = errorOf(errorNumber(::GetLastError()));
    }
    return target;
}

std::string placeOf(const OutputTarget& target) {
    std::wstring full = fullPath(target.path);
    const std::size_t name = full.find_last_of(L'\\') + 1;
    const std::wstring folder = realPlace(systemPath(narrowText(full.substr(0, name))));
    if (!folder.empty()) full.replace(0, name, folder + L'\\');
    // Names that differ in case alone name one file.
    std::wstring folded(full.size(), L'\0');
    const int size = static_cast<int>(full.size());
    ::LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_UPPERCASE, full.data(), size, folded.data(), size,
                    nullptr, nullptr, 0);
    return narrowText(folded);
}

int processNumber() {
    return ::_getpid();
}

namespace {

/// Moves a file to the place of another, once. Returns 0 or the error of the system.
DWORD moveOnce(const std::wstring& from, const OutputTarget& target) {
    const std::wstring to = systemPath(target.path);
    // Keeps the rights and the attributes of the file that is replaced, where the file system has
    // any and lets it.
    if (target.kind == TargetKind::Regular &&
        ::ReplaceFileW(to.c_str(), from.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr,
                       nullptr) != 0)
        return 0;
    if (::MoveFileExW(from.c_str(), to.c_str(),
                      MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0)
        return 0;
    return ::GetLastError();
}

}  // namespace

std::error_code replaceTarget(const std::string& temporary, const OutputTarget& target) {
    // A virus scanner or an indexing service may hold either file for a moment after it was
    // written. In all, these are three seconds.
    constexpr std::array<DWORD, 8> pauses{10, 20, 50, 120, 300, 500, 1000, 1000};
    const std::wstring from = systemPath(temporary);
    DWORD error = moveOnce(from, target);
    for (const DWORD pause : pauses) {
        if (error != ERROR_SHARING_VIOLATION && error != ERROR_ACCESS_DENIED &&
            error != ERROR_LOCK_VIOLATION)
            break;
        ::Sleep(pause);
        error = moveOnce(from, target);
    }
    return error == 0 ? std::error_code() : errorOf(errorNumber(error));
}

void removeFile(const std::string& path) {
    ::DeleteFileW(systemPath(path).c_str());
}

std::error_code lastError() {
    return errorOf(errno);
}

void clearLastError() {
    errno = 0;
}

namespace {

/// The files to remove; locked by `guardedMutex`, since the handler runs in a thread of its own.
const std::set<std::string>* guarded = nullptr;
std::mutex guardedMutex;

BOOL WINAPI removeAll(DWORD /*event*/) {
    const std::lock_guard lock(guardedMutex);
    if (guarded != nullptr)
        for (const std::string& path : *guarded) removeFile(path);
    // The next handler ends the process.
    return FALSE;
}

}  // namespace

InterruptGuard::InterruptGuard() {
    const std::lock_guard lock(guardedMutex);
    guarded = &files_;
    ::SetConsoleCtrlHandler(&removeAll, TRUE);
}

InterruptGuard::~InterruptGuard() {
    ::SetConsoleCtrlHandler(&removeAll, FALSE);
    const std::lock_guard lock(guardedMutex);
    guarded = nullptr;
}

void InterruptGuard::add(const std::string& path) {
    const std::lock_guard lock(guardedMutex);
    files_.insert(path);
}

void InterruptGuard::remove(const std::string& path) {
    const std::lock_guard lock(guardedMutex);
    files_.erase(path);
}

}  // namespace Platform
