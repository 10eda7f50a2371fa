#include "platform/ReplacementState.hpp"

#include <fcntl.h>
#include <linux/capability.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string_view>
#include <thread>
#include <utility>

namespace Platform {

namespace {

std::error_code errorOf(int number) {
    return {number, std::generic_category()};
}

/// A path of at most so many links; a longer chain is a loop.
constexpr int mostLinks = 40;

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string linkTarget(const std::string& path) {
    std::array<char, PATH_MAX> text{};
    const ssize_t length = ::readlink(path.c_str(), text.data(), text.size());
    if (length <= 0) return {};
    const std::string target(text.data(), static_cast<std::size_t>(length));
    return target.front() == '/' ? target : folderOf(path) + "/" + target;
}

/// The real place of an existing file, or `path` itself.
std::string realPath(const std::string& path) {
    char* const real = ::realpath(path.c_str(), nullptr);
    if (real == nullptr) return path;
    std::string text = real;
    std::free(real);
    return text;
}

/// The descriptor of this process that a path names, by way of links such as /dev/stdout, or -1.
int descriptorOf(std::string path) {
    const std::string own = "/proc/self/fd";
    for (int links = 0; links < mostLinks && !path.empty(); ++links) {
        const std::string_view name = std::string_view(path).substr(path.rfind('/') + 1);
        int number = -1;
        const auto [end, fault] = std::from_chars(name.data(), name.data() + name.size(), number);
        const bool isNumber = fault == std::errc() && end == name.data() + name.size();
        if (isNumber && number >= 0 && realPath(folderOf(path)) == realPath(own)) return number;
        path = linkTarget(path);
    }
    return -1;
}

}  // namespace

OutputTarget outputTarget(const std::string& path) {
    OutputTarget target{TargetKind::Impossible, path, {}, descriptorOf(path)};
    struct stat status {};
    if (target.descriptor >= 0 && ::fstat(target.descriptor, &status) == 0) {
        target.kind = TargetKind::Device;
        return target;
    }
    // The link of a descriptor, as in /dev/stdout and /dev/fd/63, names no path that could be
    // followed if it leads to a pipe.
    const bool isThere = ::stat(path.c_str(), &status) == 0;
    if (isThere && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode)) {
        target.kind = TargetKind::Device;
        return target;
    }
    for (int links = 0; links < mostLinks; ++links) {
        if (::lstat(target.path.c_str(), &status) != 0) {
            const int reason = errno;
            struct stat folder {};
            const bool isMissing =
                reason == ENOENT && !target.path.empty() && target.path.back() != '/' &&
                ::stat(folderOf(target.path).c_str(), &folder) == 0 && S_ISDIR(folder.st_mode);
            if (isMissing)
                target.kind = TargetKind::Missing;
            else
                target.error = errorOf(reason);
            return target;
        }
        if (!S_ISLNK(status.st_mode)) break;
        target.path = linkTarget(target.path);
    }
    if (S_ISLNK(status.st_mode))
        target.error = errorOf(ELOOP);
    else if (S_ISDIR(status.st_mode))
        target.error = errorOf(EISDIR);
    else if (S_ISREG(status.st_mode) && ::access(target.path.c_str(), W_OK) != 0)
        target.error = errorOf(errno);
    else
        target.kind = TargetKind::Regular;
    return target;
}

std::optional<FileIdentity> soleFileAt(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_nlink != 1)
        return std::nullopt;
    return FileIdentity{status.st_dev, status.st_ino};
}

std::optional<OutputFile> openDevice(const OutputTarget& target) {
    if (target.descriptor >= 0) return OutputFile::ofStream(target.descriptor);
    return OutputFile::create(target.path, FileMode::Binary);
}

std::string placeOf(const OutputTarget& target) {
    if (target.descriptor >= 0) return "/dev/fd/" + std::to_string(target.descriptor);
    const std::size_t slash = target.path.rfind('/');
    if (slash == std::string::npos) return realPath(".") + "/" + target.path;
    return realPath(target.path.substr(0, slash + 1)) + target.path.substr(slash);
}

int processNumber() {
    return ::getpid();
}

namespace {

/// A descriptor, closed by its destructor.
class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0) ::close(number_);
    }
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) = delete;
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number() const { return number_; }

private:
    int number_;
};

/// This process may rename files of others in a folder whose sticky bit is set.
bool ignoresSticky() {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3> sets{};
    constexpr unsigned owner = 1U << CAP_FOWNER;
    return ::syscall(SYS_capget, &header, sets.data()) == 0 && (sets[0].effective & owner) != 0;
}

/// What a name in an open folder is, with no link followed.
std::error_code lookUp(int folder, const std::string& name, struct statx& status) {
    constexpr unsigned wanted = STATX_TYPE | STATX_MODE | STATX_UID | STATX_GID | STATX_INO;
    if (::statx(folder, name.c_str(), AT_SYMLINK_NOFOLLOW, wanted, &status) == 0) return {};
    return errorOf(errno);
}

/// The error of a call that returns 0 if it is good.
std::error_code outcome(int result) {
    return result == 0 ? std::error_code() : errorOf(errno);
}

class LinuxReplacement final : public ReplacementState {
public:
    using Failure = Replacement::Failure;

    explicit LinuxReplacement(InterruptGuard& guard) : guard_(&guard) {}

    void add(const TemporaryFile& file, const OutputTarget& target) override {
        Item item;
        item.file = file;
        item.name = nameOf(file.path);
        item.target = nameOf(target.path);
        item.folderPath = folderOf(target.path);
        items_.push_back(std::move(item));
    }

    std::optional<Failure> tryAll() override {
        for (std::size_t i = 0; i < items_.size(); ++i) {
            if (const std::error_code error = openFolder(items_[i])) return Failure{i, error};
            if (const std::error_code error = tryOne(items_[i])) return Failure{i, error};
        }
        return std::nullopt;
    }

    std::optional<Failure> putInPlace(bool canFailLater) override {
        for (std::size_t i = 0; i < items_.size(); ++i)
            if (const std::error_code error = openFolder(items_[i])) return Failure{i, error};
        for (auto& [identity, folder] : folders_) lock(folder);
        // No memory is needed from the first rename on.
        left_.reserve(items_.size());
        // What was tried before the locks may no longer be true.
        if (const auto failure = tryAll()) return failure;
        makeSecondNames(canFailLater);
        held_.emplace();
        for (std::size_t i = 0; i < items_.size(); ++i) {
            Item& item = items_[i];
            if (const auto error = outcome(
                    ::renameat(item.folder, item.name.c_str(), item.folder, item.target.c_str())))
                return Failure{i, error};
            item.isInPlace = true;
            guard_->remove(item.file.path, *held_);
        }
        return std::nullopt;
    }

    std::vector<std::size_t> takeBack() override {
        for (std::size_t i = items_.size(); i-- != 0;)
            if (items_[i].isInPlace && takeBack(items_[i])) left_.push_back(i);
        keep();
        std::ranges::reverse(left_);
        return std::move(left_);
    }

    void keep() override {
        for (Item& item : items_) item.isInPlace = false;
        held_.reset();
        // The blocks of the old files are given free when nobody waits any more.
        for (auto& [identity, folder] : folders_) ::flock(folder.descriptor.number(), LOCK_UN);
        for (const Item& item : items_)
            if (!item.second.empty()) ::unlinkat(item.folder, item.second.c_str(), 0);
        const InterruptsHeld held;
        for (Item& item : items_) {
            guard_->remove(item.secondPath, held);
            item.second.clear();
        }
    }

    std::vector<std::string> busyFolders() const override {
        std::vector<std::string> busy;
        for (const auto& [identity, folder] : folders_)
            if (folder.isBusy) busy.push_back(folder.path);
        return busy;
    }

private:
    struct Item {
        TemporaryFile file;
        std::string name;    ///< of the temporary file in the folder
        std::string target;  ///< the name that it is to have
        std::string second;  ///< another name of the file that it replaces; empty if it has none
        std::string secondPath;
        std::string folderPath;
        int folder = -1;
        bool replaces = false;
        bool isInPlace = false;
    };
    struct Folder {
        Descriptor descriptor;
        std::string path;
        bool isBusy = false;
    };

    static std::string nameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

    /// Opens the folder of an item, unless an item before it has the same.
    std::error_code openFolder(Item& item) {
        if (item.folder >= 0) return {};
        const auto known = folderNumbers_.find(item.folderPath);
        if (known != folderNumbers_.end()) {
            item.folder = known->second;
            return {};
        }
        int number = ::open(item.folderPath.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        // A folder that may not be listed can be written all the same, and cannot be locked.
        if (number < 0 && errno == EACCES)
            number = ::open(item.folderPath.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        if (number < 0) return errorOf(errno);
        Descriptor descriptor(number);
        struct stat status {};
        if (::fstat(number, &status) != 0) return errorOf(errno);
        // Paths that look different may lead to one folder, of which one lock is enough.
        const auto [folder, isNew] = folders_.try_emplace(
            {status.st_dev, status.st_ino}, Folder{std::move(descriptor), item.folderPath, false});
        item.folder = folder->second.descriptor.number();
        folderNumbers_.emplace(item.folderPath, item.folder);
        return {};
    }

    /// Waits for other runs. A program that keeps the lock for long, such as one that started this
    /// one, is not waited for.
    static void lock(Folder& folder) {
        constexpr std::chrono::milliseconds pause(5);
        constexpr std::chrono::seconds longest(10);
        const auto end = std::chrono::steady_clock::now() + longest;
        while (::flock(folder.descriptor.number(), LOCK_EX | LOCK_NB) != 0) {
            // A file system without locks has another reason.
            if (errno != EWOULDBLOCK && errno != EINTR) return;
            folder.isBusy = std::chrono::steady_clock::now() > end;
            if (folder.isBusy) return;
            std::this_thread::sleep_for(pause);
        }
    }

    /// Why a file cannot take its place.
    static std::error_code tryOne(Item& item) {
        struct statx own {};
        if (const auto error = lookUp(item.folder, item.name, own)) return error;
        const std::uint64_t device = makedev(own.stx_dev_major, own.stx_dev_minor);
        // In a folder of others the name may lead to another file by now.
        if (FileIdentity{device, own.stx_ino} != item.file.identity) return errorOf(ESTALE);
        struct statx folder {};
        if (::statx(item.folder, "", AT_EMPTY_PATH, STATX_MODE | STATX_UID, &folder) != 0)
            return errorOf(errno);
        if ((folder.stx_attributes & STATX_ATTR_APPEND) != 0) return errorOf(EPERM);
        struct statx target {};
        const std::error_code error = lookUp(item.folder, item.target, target);
        item.replaces = !error;
        if (error) return error == std::errc::no_such_file_or_directory ? std::error_code() : error;
        if (S_ISDIR(target.stx_mode)) return errorOf(EISDIR);
        if (!S_ISREG(target.stx_mode)) return errorOf(EEXIST);
        if ((target.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0) return errorOf(EBUSY);
        if ((target.stx_attributes & (STATX_ATTR_IMMUTABLE | STATX_ATTR_APPEND)) != 0)
            return errorOf(EPERM);
        const uid_t user = ::geteuid();
        const bool isSticky = (folder.stx_mode & S_ISVTX) != 0 && folder.stx_uid != user &&
                              target.stx_uid != user && !ignoresSticky();
        if (isSticky) return errorOf(EPERM);
        if (::faccessat(item.folder, item.target.c_str(), W_OK, 0) != 0) return errorOf(errno);
        const bool isAlike = target.stx_uid == own.stx_uid && target.stx_gid == own.stx_gid &&
                             (target.stx_mode & 0777U) == (own.stx_mode & 0777U);
        return isAlike ? std::error_code() : takeAttributes(item);
    }

    /// The target may have come, or have changed its mode, since the temporary file was made.
    static std::error_code takeAttributes(const Item& item) {
        const int number = ::openat(item.folder, item.name.c_str(),
                                    O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
        // The file may have been given away, with the attributes that it has.
        if (number < 0) return {};
        const Descriptor descriptor(number);
        const auto file = OutputFile::ofStream(number);
        if (!file) return errorOf(errno);
        if (file->identity() != item.file.identity) return errorOf(ESTALE);
        return file->takeAttributesOf(item.folderPath + "/" + item.target);
    }

    /// Gives the files that are replaced second names, where the file system has that.
    void makeSecondNames(bool canFailLater) {
        // As with temporary files, a name of somebody else must not be removed.
        const InterruptsHeld held;
        for (std::size_t i = 0; i < items_.size(); ++i)
            if (items_[i].replaces && (canFailLater || i + 1 < items_.size()))
                makeSecondName(items_[i], held);
    }

    void makeSecondName(Item& item, const InterruptsHeld& held) const {
        constexpr unsigned mostTries = 1000;
        for (unsigned i = 0; i < mostTries; ++i) {
            item.second = item.name;
            if (i != 0) item.second.append("-").append(std::to_string(i));
            item.second += ".old";
            item.secondPath = item.file.path.substr(0, item.file.path.rfind('/') + 1);
            item.secondPath += item.second;
            guard_->add(item.secondPath, held);
            if (::linkat(item.folder, item.target.c_str(), item.folder, item.second.c_str(), 0) ==
                0)
                return;
            const int reason = errno;
            guard_->remove(item.secondPath, held);
            if (reason != EEXIST) break;
        }
        item.second.clear();
    }

    /// Restores what an item replaced.
    static std::error_code takeBack(Item& item) {
        if (!item.replaces) return outcome(::unlinkat(item.folder, item.target.c_str(), 0));
        if (item.second.empty()) return errorOf(EPERM);
        const auto error =
            outcome(::renameat(item.folder, item.second.c_str(), item.folder, item.target.c_str()));
        // The name leads to nothing any more, and `keep` takes it from the guard.
        if (!error) item.second.clear();
        return error;
    }

    InterruptGuard* guard_;
    std::vector<Item> items_;
    std::map<FileIdentity, Folder> folders_;  ///< in an order in which no two runs block each other
    std::map<std::string, int> folderNumbers_;  ///< their descriptors, by paths
    std::vector<std::size_t> left_;             ///< what could not be taken back
    std::optional<InterruptsHeld> held_;
};

}  // namespace

std::unique_ptr<ReplacementState> ReplacementState::make(InterruptGuard& guard) {
    return std::make_unique<LinuxReplacement>(guard);
}

void removeFile(const std::string& path) {
    ::unlink(path.c_str());
}

}  // namespace Platform
