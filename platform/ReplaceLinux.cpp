#include "platform/Replace.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>

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

}  // namespace

OutputTarget outputTarget(const std::string& path) {
    OutputTarget target{TargetKind::Impossible, path, {}};
    struct stat status {};
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

std::string placeOf(const OutputTarget& target) {
    const std::size_t slash = target.path.rfind('/');
    if (slash == std::string::npos) return realPath(".") + "/" + target.path;
    return realPath(target.path.substr(0, slash + 1)) + target.path.substr(slash);
}

int processNumber() {
    return ::getpid();
}

namespace {

/// Gives a file the owner and group of another, or at least the group: only the superuser may give
/// files away. False if the owner or the group differs, where set-user-ID and set-group-ID would
/// mean somebody else.
bool giveTo(const std::string& path, const struct stat& other) {
    constexpr auto sameOwner = static_cast<uid_t>(-1);
    if (::chown(path.c_str(), other.st_uid, other.st_gid) == 0) return true;
    [[maybe_unused]] const int group = ::chown(path.c_str(), sameOwner, other.st_gid);
    return false;
}

}  // namespace

std::error_code replaceTarget(const std::string& temporary, const OutputTarget& target) {
    struct stat status {};
    if (target.kind == TargetKind::Regular && ::stat(target.path.c_str(), &status) == 0) {
        if (!giveTo(temporary, status)) status.st_mode &= 0777U;
        if (::chmod(temporary.c_str(), status.st_mode & 07777U) != 0) return errorOf(errno);
    }
    if (std::rename(temporary.c_str(), target.path.c_str()) != 0) return errorOf(errno);
    return {};
}

void removeFile(const std::string& path) {
    ::unlink(path.c_str());
}

std::error_code lastError() {
    return errorOf(errno);
}

void clearLastError() {
    errno = 0;
}

namespace {

constexpr std::array interrupts{SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGXCPU};

/// The files to remove; changed only while the interrupts are blocked.
const std::set<std::string>* guarded = nullptr;

void removeAll(int signal) {
    if (guarded != nullptr)
        for (const std::string& path : *guarded) ::unlink(path.c_str());
    std::signal(signal, SIG_DFL);
    ::raise(signal);
}

/// Lets no interrupt come while it lives.
class InterruptsBlocked {
public:
    InterruptsBlocked() {
        sigset_t blocked;
        ::sigemptyset(&blocked);
        for (const int signal : interrupts) ::sigaddset(&blocked, signal);
        ::pthread_sigmask(SIG_BLOCK, &blocked, &before_);
    }
    ~InterruptsBlocked() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    InterruptsBlocked(const InterruptsBlocked&) = delete;
    InterruptsBlocked& operator=(const InterruptsBlocked&) = delete;

private:
    sigset_t before_{};
};

}  // namespace

InterruptGuard::InterruptGuard() {
    const InterruptsBlocked blocked;
    guarded = &files_;
    for (const int signal : interrupts) {
        struct sigaction found {};
        struct sigaction handled {};
        handled.sa_handler = &removeAll;
        // A signal that is ignored, as by nohup, stays so.
        if (::sigaction(signal, nullptr, &found) == 0 && found.sa_handler == SIG_DFL)
            ::sigaction(signal, &handled, nullptr);
    }
}

InterruptGuard::~InterruptGuard() {
    const InterruptsBlocked blocked;
    for (const int signal : interrupts) {
        struct sigaction found {};
        if (::sigaction(signal, nullptr, &found) == 0 && found.sa_handler == &removeAll)
            std::signal(signal, SIG_DFL);
    }
    guarded = nullptr;
}

void InterruptGuard::add(const std::string& path) {
    const InterruptsBlocked blocked;
    files_.insert(path);
}

void InterruptGuard::remove(const std::string& path) {
    const InterruptsBlocked blocked;
    files_.erase(path);
}

}  // namespace Platform
