#include "platform/ReplacementState.hpp"

#include <process.h>
#include <windows.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <deque>
#include <functional>
#include <set>
#include <string_view>
#include <utility>

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

/// The name of the device that a path leads to, or empty.
std::wstring deviceOf(const std::string& path) {
    constexpr std::wstring_view start = L"\\\\.\\";
    const std::wstring full = fullPath(path);
    return full.starts_with(start) ? full.substr(start.size()) : std::wstring();
}

/// The system takes names such as aux.hex and C:\fw\nul.bin for those of devices.
bool isDeviceByMistake(const std::string& path) {
    const bool isAsked = path.starts_with("\\\\.\\") || path.starts_with("//./");
    return !isAsked && path.find('.', fileNameStart(path)) != std::string::npos;
}

}  // namespace

OutputTarget outputTarget(const std::string& path) {
    OutputTarget target{TargetKind::Impossible, path, {}, -1};
    if (!deviceOf(path).empty()) {
        if (isDeviceByMistake(path))
            target.error = errorOf(ENXIO);
        else
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

std::optional<FileIdentity> soleFileAt(const std::string& path) {
    constexpr DWORD shared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE opened =
        ::CreateFileW(systemPath(path).c_str(), 0, shared, nullptr, OPEN_EXISTING, 0, nullptr);
    if (opened == INVALID_HANDLE_VALUE) return std::nullopt;
    const Handle handle(opened);
    BY_HANDLE_FILE_INFORMATION file{};
    if (::GetFileInformationByHandle(opened, &file) == 0 || file.nNumberOfLinks != 1)
        return std::nullopt;
    return FileIdentity{file.dwVolumeSerialNumber,
                        std::uint64_t{file.nFileIndexHigh} << 32U | file.nFileIndexLow};
}

std::optional<OutputFile> openDevice(const OutputTarget& target) {
    return OutputFile::create(target.path, FileMode::Binary);
}

int processNumber() {
    return ::_getpid();
}

namespace {

/// A virus scanner or an indexing service may hold a file for a moment after it was written: `call`
/// is tried for up to three seconds. It returns 0 or the error of the system.
template <class Call>
std::error_code patiently(Call call) {
    constexpr std::array<DWORD, 8> pauses{10, 20, 50, 120, 300, 500, 1000, 1000};
    DWORD error = call();
    for (const DWORD pause : pauses) {
        if (error != ERROR_SHARING_VIOLATION && error != ERROR_ACCESS_DENIED &&
            error != ERROR_LOCK_VIOLATION)
            break;
        ::Sleep(pause);
        error = call();
    }
    return error == 0 ? std::error_code() : errorOf(errorNumber(error));
}

/// A mutex that has the name of a folder, so that all processes find it.
class FolderLock {
public:
    explicit FolderLock(const std::string& folder) : folder_(folder) {
        constexpr DWORD longest = 10'000;
        const std::wstring name =
            L"Global\\tessaron-" + std::to_wstring(std::hash<std::string>()(folder));
        mutex_.reset(::CreateMutexW(nullptr, FALSE, name.c_str()));
        if (mutex_ == nullptr) return;
        const DWORD outcome = ::WaitForSingleObject(mutex_.get(), longest);
        // A run that was killed has abandoned it.
        isLocked_ = outcome == WAIT_OBJECT_0 || outcome == WAIT_ABANDONED;
        isBusy_ = outcome == WAIT_TIMEOUT;
    }
    ~FolderLock() { unlock(); }
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

    void unlock() {
        if (std::exchange(isLocked_, false)) ::ReleaseMutex(mutex_.get());
    }
    bool isBusy() const { return isBusy_; }
    const std::string& folder() const { return folder_; }

private:
    std::string folder_;
    Handle mutex_;
    bool isLocked_ = false;
    bool isBusy_ = false;
};

class WindowsReplacement final : public ReplacementState {
public:
    using Failure = Replacement::Failure;

    explicit WindowsReplacement(InterruptGuard& guard) : guard_(&guard) {}

    void add(const TemporaryFile& file, const OutputTarget& target) override {
        items_.push_back({file, target, file.path + ".old", false, false, false});
    }

    std::optional<Failure> tryAll() override {
        for (std::size_t i = 0; i < items_.size(); ++i)
            if (const std::error_code error = tryOne(items_[i])) return Failure{i, error};
        return std::nullopt;
    }

    std::optional<Failure> putInPlace(bool /*canFailLater*/) override {
        // In one order, so that no two runs block each other.
        std::set<std::string> folders;
        for (const Item& item : items_) {
            const std::string place = placeOf(item.target);
            folders.insert(place.substr(0, place.find_last_of('\\')));
        }
        for (const std::string& folder : folders) locks_.emplace_back(folder);
        left_.reserve(items_.size());
        if (const auto failure = tryAll()) return failure;
        held_.emplace();
        for (std::size_t i = 0; i < items_.size(); ++i) {
            Item& item = items_[i];
            guard_->add(item.second, *held_);
            if (const auto error = patiently([&item] { return move(item); }))
                return Failure{i, error};
            item.isInPlace = true;
            guard_->remove(item.file.path, *held_);
        }
        return std::nullopt;
    }

    std::vector<std::size_t> takeBack() override {
        for (std::size_t i = items_.size(); i-- != 0;)
            if (items_[i].isInPlace && patiently([this, i] { return restore(items_[i]); }))
                left_.push_back(i);
        keep();
        std::ranges::reverse(left_);
        return std::move(left_);
    }

    void keep() override {
        for (Item& item : items_) item.isInPlace = false;
        held_.reset();
        for (FolderLock& lock : locks_) lock.unlock();
        for (const Item& item : items_)
            if (item.hasSecond) removeFile(item.second);
        const InterruptsHeld held;
        for (Item& item : items_) {
            item.hasSecond = false;
            guard_->remove(item.second, held);
        }
    }

    std::vector<std::string> busyFolders() const override {
        std::vector<std::string> busy;
        for (const FolderLock& lock : locks_)
            if (lock.isBusy()) busy.push_back(lock.folder());
        return busy;
    }

private:
    struct Item {
        TemporaryFile file;
        OutputTarget target;
        std::string second;  ///< another name of the file that it replaces
        bool replaces;
        bool hasSecond;
        bool isInPlace;
    };

    /// Why a file cannot take its place, as far as that shows without doing it.
    static std::error_code tryOne(Item& item) {
        const OutputTarget now = outputTarget(item.target.path);
        if (now.kind == TargetKind::Impossible) return now.error;
        item.replaces = now.kind == TargetKind::Regular;
        if (!item.replaces) return {};
        return patiently([&item] {
            constexpr DWORD shared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
            const HANDLE opened = ::CreateFileW(systemPath(item.target.path).c_str(), DELETE,
                                                shared, nullptr, OPEN_EXISTING, 0, nullptr);
            if (opened == INVALID_HANDLE_VALUE) return ::GetLastError();
            ::CloseHandle(opened);
            return DWORD{0};
        });
    }

    /// Moves a file to its place, once.
    static DWORD move(Item& item) {
        const std::wstring from = systemPath(item.file.path);
        const std::wstring to = systemPath(item.target.path);
        const std::wstring second = systemPath(item.second);
        // Keeps the rights and the attributes of the file that is replaced, where the file system
        // has any and lets it.
        if (item.replaces &&
            ::ReplaceFileW(to.c_str(), from.c_str(), second.c_str(),
                           REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr, nullptr) != 0) {
            item.hasSecond = true;
            return 0;
        }
        if (item.replaces && ::CopyFileW(to.c_str(), second.c_str(), TRUE) != 0)
            item.hasSecond = true;
        if (::MoveFileExW(from.c_str(), to.c_str(),
                          MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0)
            return 0;
        return ::GetLastError();
    }

    /// Restores what an item replaced.
    static DWORD restore(Item& item) {
        const std::wstring place = systemPath(item.target.path);
        if (!item.replaces) return ::DeleteFileW(place.c_str()) != 0 ? 0 : ::GetLastError();
        if (!item.hasSecond) return ERROR_NOT_SUPPORTED;
        if (::MoveFileExW(systemPath(item.second).c_str(), place.c_str(),
                          MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) == 0)
            return ::GetLastError();
        item.hasSecond = false;
        return 0;
    }

    InterruptGuard* guard_;
    std::vector<Item> items_;
    std::deque<FolderLock> locks_;
    std::vector<std::size_t> left_;  ///< what could not be taken back
    std::optional<InterruptsHeld> held_;
};

}  // namespace

std::unique_ptr<ReplacementState> ReplacementState::make(InterruptGuard& guard) {
    return std::make_unique<WindowsReplacement>(guard);
}

void removeFile(const std::string& path) {
    ::DeleteFileW(systemPath(path).c_str());
}

}  // namespace Platform
