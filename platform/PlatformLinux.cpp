#include "platform/Platform.hpp"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <limits>
#include <new>
#include <utility>

#include "VersionData.hpp"

namespace Platform {

const char pathSeparator = '/';

std::optional<VersionInfo> versionInfo(const char* /*programPath*/) {
    return VersionInfo{TESSARON_ORIGINAL_FILE_NAME, TESSARON_VERSION_MAJOR, TESSARON_VERSION_MINOR,
                       TESSARON_COPYRIGHT, TESSARON_BUILD_DATE};
}

namespace {

/// Below this size a block comes from the ordinary heap and no figures are asked for.
constexpr std::size_t largeBlock = std::size_t{1} << 20U;
/// From this size on the machine is asked whether it can hold the block.
constexpr std::size_t hugeBlock = std::size_t{32} << 20U;
constexpr std::uint64_t unknown = std::numeric_limits<std::uint64_t>::max();

/// The start of a small file of the kernel, as text.
std::string kernelText(const char* path) {
    std::array<char, 4096> text{};
    const int file = ::open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0) return {};
    const ssize_t length = ::read(file, text.data(), text.size());
    ::close(file);
    return {text.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0))};
}

/// The first decimal number behind `label`, or `unknown`.
std::uint64_t numberBehind(std::string_view text, std::string_view label) {
    const std::size_t at = text.find(label);
    if (at == std::string_view::npos) return unknown;
    const std::size_t digit = text.find_first_of("0123456789", at + label.size());
    if (digit == std::string_view::npos) return unknown;
    std::uint64_t number = unknown;
    std::from_chars(text.data() + digit, text.data() + text.size(), number);
    return number;
}

/// What the control group of this process may still take.
std::uint64_t groupMemory() {
    const std::uint64_t limit = numberBehind(kernelText("/sys/fs/cgroup/memory.max"), "");
    const std::uint64_t used = numberBehind(kernelText("/sys/fs/cgroup/memory.current"), "");
    if (limit == unknown || used == unknown) return unknown;
    return limit - std::min(limit, used);
}

/// Bytes that blocks may still use. Pages that were reserved but not yet touched are counted as
/// used, for their owners will touch them.
std::uint64_t availableMemory() {
    constexpr std::uint64_t kibi = 1024;
    const std::string machine = kernelText("/proc/meminfo");
    const std::string process = kernelText("/proc/self/status");
    const std::uint64_t available = numberBehind(machine, "MemAvailable:");
    const std::uint64_t reserved = numberBehind(process, "VmData:");
    const std::uint64_t resident = numberBehind(process, "RssAnon:");
    if (available == unknown || reserved == unknown || resident == unknown) return unknown;
    std::uint64_t untouched = reserved - std::min(reserved, resident);
    // More than the machine has was never handed out here: it is the shadow memory of a sanitizer.
    if (untouched > numberBehind(machine, "MemTotal:")) untouched = 0;
    const std::uint64_t free = std::min(available * kibi, groupMemory());
    return free - std::min(free, untouched * kibi);
}

}  // namespace

PageBlock::PageBlock(std::size_t size) {
    if (size == 0) return;
    if (size < largeBlock) {
        data_ = static_cast<std::byte*>(std::calloc(size, 1));
        if (data_ == nullptr) throw std::bad_alloc();
    } else {
        if (size >= hugeBlock && size > availableMemory()) throw std::bad_alloc();
        void* const pages =
            ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (pages == MAP_FAILED) throw std::bad_alloc();
        // A page fault for every two megabytes instead of every four kilobytes. Only advice.
        ::madvise(pages, size, MADV_HUGEPAGE);
        data_ = static_cast<std::byte*>(pages);
    }
    size_ = size;
}

PageBlock::~PageBlock() {
    if (size_ < largeBlock)
        std::free(data_);
    else
        ::munmap(data_, size_);
}

void guardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // The lowest number that is free is the one that a new descriptor gets.
        if (::fcntl(stream, F_GETFD) < 0) static_cast<void>(::open("/", O_PATH));
    }
    // A handler, since a program that is started does not inherit it: it would do so with SIG_IGN.
    struct sigaction handled {};
    handled.sa_handler = [](int) {};
    handled.sa_flags = SA_RESTART;
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
        struct sigaction found {};
        if (::sigaction(signal, nullptr, &found) == 0 && found.sa_handler == SIG_DFL)
            ::sigaction(signal, &handled, nullptr);
    }
}

namespace {

std::chrono::nanoseconds changeTime(const struct stat& status) {
    return std::chrono::seconds(status.st_mtim.tv_sec) +
           std::chrono::nanoseconds(status.st_mtim.tv_nsec);
}

}  // namespace

std::optional<InputFile> InputFile::open(const std::string& path) {
    // Without O_NONBLOCK the open of a pipe waits for its other end.
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return std::nullopt;
    InputFile file(descriptor);
    struct stat status {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    file.size_ = static_cast<std::uint64_t>(status.st_size);
    file.changeTime_ = changeTime(status);
    return file;
}

InputFile::~InputFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

std::size_t InputFile::readAt(std::uint64_t offset, std::span<char> out) const {
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
    struct stat status {};
    const bool isSame = ::fstat(descriptor_, &status) == 0 &&
                        static_cast<std::uint64_t>(status.st_size) == size_ &&
                        changeTime(status) == changeTime_;
    return isSame ? Reading::Complete : Reading::Changed;
}

std::optional<OutputFile> OutputFile::create(const std::string& path, FileMode /*mode*/) {
    // Without O_NONBLOCK the open of a pipe that nobody reads never returns.
    const int descriptor =
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK, 0666);
    if (descriptor < 0) return std::nullopt;
    OutputFile file(descriptor);
    if (::fcntl(descriptor, F_SETFL, 0) != 0) return std::nullopt;
    return file;
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

void runProgram(const std::string& location, const std::string& arguments) {
    // Inside single quotes every character stands for itself, but for the single quote.
    std::string command = "'";
    for (const char character : location) {
        if (character == '\'')
            command += "'\\''";
        else
            command += character;
    }
    command += "' ";
    command += arguments;
    static_cast<void>(std::system(command.c_str()));
}

std::size_t usableStackBytes() {
    constexpr std::size_t usual = std::size_t{8} << 20U;
    rlimit limit{};
    const bool isLimited =
        ::getrlimit(RLIMIT_STACK, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY;
    const std::size_t total =
        isLimited ? std::min<std::size_t>(usual, static_cast<std::size_t>(limit.rlim_cur)) : usual;
    return total / 2;
}

std::uint64_t usableSteps() {
    return 50'000'000;
}

}  // namespace Platform
