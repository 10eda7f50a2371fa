#include "platform/Files.hpp"

#include <fcntl.h>
#include <linux/magic.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace Platform {

namespace {

std::chrono::nanoseconds changeTime(const struct stat& status) {
    return std::chrono::seconds(status.st_mtim.tv_sec) +
           std::chrono::nanoseconds(status.st_mtim.tv_nsec);
}

FileState stateOf(const struct stat& status) {
    return {{status.st_dev, status.st_ino},
            static_cast<std::uint64_t>(status.st_size),
            changeTime(status)};
}

/// A pipe without a name, such as a shell makes: one that has no writer has ended.
bool isAnonymousPipe(int descriptor) {
    struct statfs system {};
    return ::fstatfs(descriptor, &system) == 0 && system.f_type == PIPEFS_MAGIC;
}

}  // namespace

std::optional<InputFile> InputFile::open(const std::string& path) {
    // Without O_NONBLOCK, opening a pipe waits for its other end.
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return std::nullopt;
    return ofDescriptor(descriptor);
}

std::optional<InputFile> InputFile::openStandardInput() {
    return open("/dev/stdin");
}

std::optional<InputFile> InputFile::ofDescriptor(int descriptor) {
    constexpr std::size_t longestStream = std::size_t{1} << 30U;
    constexpr std::size_t longestOfDevice = std::size_t{1} << 26U;
    InputFile file(descriptor);
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) return std::nullopt;
    if (S_ISREG(status.st_mode)) {
        file.state_ = stateOf(status);
        return file;
    }
    const bool isTerminal = ::isatty(descriptor) != 0;
    // The system has a reason for a folder, and none for what this program refuses on its own.
    errno = S_ISDIR(status.st_mode) ? EISDIR : 0;
    if (errno != 0 || isTerminal) return std::nullopt;
    const std::size_t most = S_ISCHR(status.st_mode) ? longestOfDevice : longestStream;
    const bool isPipe = S_ISFIFO(status.st_mode);
    if (file.readStream(most, isPipe, isPipe && !isAnonymousPipe(descriptor))) return file;
    errno = 0;
    return std::nullopt;
}

bool InputFile::readStream(std::size_t most, bool isPipe, bool isNamed) {
    constexpr std::size_t pieceSize = std::size_t{1} << 16U;
    isStream_ = true;
    bool hasWriter = !isNamed;
    for (;;) {
        makeRoom(pieceSize);
        const ssize_t count =
            ::read(descriptor_, stream_.data() + state_.size, stream_.size() - state_.size);
        if (count > 0) {
            state_.size += static_cast<std::size_t>(count);
            if (state_.size > most) return false;
        } else if (count == 0) {
            // A named pipe that never had a writer looks as if it had ended.
            return hasWriter || state_.size != 0;
        } else if (errno == EAGAIN) {
            if (!isPipe) return false;
            hasWriter = true;
            pollfd waiting{descriptor_, POLLIN, 0};
            static_cast<void>(::poll(&waiting, 1, -1));
        } else if (errno != EINTR) {
            hasFailed_ = true;
            return true;
        }
    }
}

std::optional<InputFile> InputFile::again() const {
    if (isStream_) return std::nullopt;
    const int descriptor = ::fcntl(descriptor_, F_DUPFD_CLOEXEC, 0);
    if (descriptor < 0) return std::nullopt;
    InputFile file(descriptor);
    file.state_ = state_;
    file.refusesEarlyEnd_ = refusesEarlyEnd_;
    return file;
}

InputFile::~InputFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

std::size_t InputFile::readAt(std::uint64_t offset, std::span<char> out) const {
    if (isStream_) return copyOfStream(offset, out);
    std::size_t size = 0;
    while (size < out.size()) {
        const ssize_t count = ::pread(descriptor_, out.data() + size, out.size() - size,
                                      static_cast<off_t>(offset + size));
        if (count < 0 && errno == EINTR) continue;
        hasFailed_ = hasFailed_ || count < 0;
        if (count == 0) noteEnd(offset + size);
        if (count <= 0) break;
        size += static_cast<std::size_t>(count);
    }
    return size;
}

bool InputFile::isReadableByOthers() const {
    struct stat status {};
    return !isStream_ && ::fstat(descriptor_, &status) == 0 &&
           (status.st_mode & (S_IRGRP | S_IROTH)) != 0;
}

Reading InputFile::reading() const {
    if (hasFailed_) return Reading::Failed;
    if (isStream_) return Reading::Complete;
    struct stat status {};
    const bool isSame = ::fstat(descriptor_, &status) == 0 && stateOf(status) == state_;
    return isSame ? Reading::Complete : Reading::Changed;
}

std::optional<OutputFile> OutputFile::create(const std::string& path, FileMode mode) {
    // Without O_NONBLOCK, opening a pipe that nobody reads never returns.
    const int descriptor =
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK, 0666);
    if (descriptor < 0) return std::nullopt;
    OutputFile file(descriptor, mode);
    if (::fcntl(descriptor, F_SETFL, 0) != 0) return std::nullopt;
    return file;
}

std::optional<OutputFile> OutputFile::createNew(const std::string& path, bool isPrivate) {
    const int descriptor =
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, isPrivate ? 0600 : 0666);
    if (descriptor < 0) return std::nullopt;
    return OutputFile(descriptor, FileMode::Binary);
}

std::optional<OutputFile> OutputFile::ofStream(int descriptor) {
    const int own = ::fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    if (own < 0) return std::nullopt;
    return OutputFile(own, FileMode::Binary);
}

std::error_code OutputFile::takeAttributesOf(const std::string& path) const {
    constexpr auto same = static_cast<uid_t>(-1);
    constexpr unsigned allBits = 07;
    struct stat other {};
    // A link that has come meanwhile is somebody's trick.
    if (::lstat(path.c_str(), &other) != 0) return {errno, std::generic_category()};
    // Only the superuser may give files away, but members may give them to their group.
    const bool isGiven = ::fchown(descriptor_, other.st_uid, other.st_gid) == 0;
    const bool hasGroup = isGiven || ::fchown(descriptor_, same, other.st_gid) == 0;
    unsigned mode = other.st_mode & 0777U;
    if (!hasGroup) {
        // Members of either group may have been among the others, and the other way round.
        const unsigned both = mode >> 3U & mode & allBits;
        mode = (mode & 0700U) | both << 3U | both;
    }
    if (::fchmod(descriptor_, mode) != 0) return {errno, std::generic_category()};
    return {};
}

FileIdentity OutputFile::identity() const {
    struct stat status {};
    if (::fstat(descriptor_, &status) != 0) return {};
    return {status.st_dev, status.st_ino};
}

OutputFile::~OutputFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

bool OutputFile::write(std::string_view bytes) const {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

bool OutputFile::close() {
    return ::close(std::exchange(descriptor_, -1)) == 0;
}

}  // namespace Platform
