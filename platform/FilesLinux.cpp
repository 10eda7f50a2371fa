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
        file.size_ = static_cast<std::uint64_t>(status.st_size);
        file.changeTime_ = changeTime(status);
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
        const ssize_t count = ::read(descriptor_, stream_.data() + size_, stream_.size() - size_);
        if (count > 0) {
            size_ += static_cast<std::size_t>(count);
            if (size_ > most) return false;
        } else if (count == 0) {
            // A named pipe that never had a writer looks as if it had ended.
            return hasWriter || size_ != 0;
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
        if (count <= 0) break;
        size += static_cast<std::size_t>(count);
    }
    return size;
}

Reading InputFile::reading() const {
    if (hasFailed_) return Reading::Failed;
    if (isStream_) return Reading::Complete;
    struct stat status {};
    const bool isSame = ::fstat(descriptor_, &status) == 0 &&
                        static_cast<std::uint64_t>(status.st_size) == size_ &&
                        changeTime(status) == changeTime_;
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
