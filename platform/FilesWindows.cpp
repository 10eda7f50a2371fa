#include "platform/Files.hpp"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include "platform/ByteWords.hpp"
#include "platform/WideText.hpp"

namespace Platform {

namespace {

/// Other programs may read, write, rename and remove the file meanwhile, as on other systems.
constexpr unsigned long shared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
/// What one call reads or writes at most: sizes have 32 bits.
constexpr std::size_t longestCall = std::size_t{1} << 30U;

HANDLE handleOf(int descriptor) {
    return reinterpret_cast<HANDLE>(::_get_osfhandle(descriptor));
}

/// Opens a file and returns its descriptor of the runtime; -1 with the reason in `errno`.
int openDescriptor(const std::string& path, unsigned long access, unsigned long disposition) {
    const std::wstring wide = systemPath(path);
    const HANDLE handle = ::CreateFileW(wide.c_str(), access, shared, nullptr, disposition,
                                        FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        noteLastError();
        // The system refuses folders for want of rights.
        const unsigned long attributes = ::GetFileAttributesW(wide.c_str());
        if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
            errno = EISDIR;
        return -1;
    }
    const int descriptor =
        ::_open_osfhandle(reinterpret_cast<std::intptr_t>(handle), _O_BINARY | _O_NOINHERIT);
    if (descriptor < 0) ::CloseHandle(handle);
    return descriptor;
}

std::chrono::nanoseconds changeTime(const FILETIME& time) {
    // Hundreds of nanoseconds since 1601; those since 1970 fit as nanoseconds.
    constexpr std::int64_t between = 116'444'736'000'000'000;
    const auto ticks = static_cast<std::int64_t>(std::uint64_t{time.dwHighDateTime} << 32U |
                                                 std::uint64_t{time.dwLowDateTime});
    return std::chrono::nanoseconds((ticks - between) * 100);
}

std::uint64_t joined(DWORD high, DWORD low) {
    return std::uint64_t{high} << 32U | low;
}

FileState stateOf(const BY_HANDLE_FILE_INFORMATION& file) {
    return {{file.dwVolumeSerialNumber, joined(file.nFileIndexHigh, file.nFileIndexLow)},
            joined(file.nFileSizeHigh, file.nFileSizeLow),
            changeTime(file.ftLastWriteTime)};
}

/// A console or a serial line, whose reader waits for somebody.
bool isInteractive(HANDLE handle) {
    unsigned long mode = 0;
    DCB line{};
    return ::GetConsoleMode(handle, &mode) != 0 || ::GetCommState(handle, &line) != 0;
}

}  // namespace

std::optional<InputFile> InputFile::open(const std::string& path) {
    const int descriptor = openDescriptor(path, GENERIC_READ, OPEN_EXISTING);
    if (descriptor < 0) return std::nullopt;
    return ofDescriptor(descriptor);
}

std::optional<InputFile> InputFile::openStandardInput() {
    const int descriptor = ::_dup(::_fileno(stdin));
    if (descriptor < 0) return std::nullopt;
    return ofDescriptor(descriptor);
}

std::optional<InputFile> InputFile::ofDescriptor(int descriptor) {
    constexpr std::size_t longestStream = std::size_t{1} << 30U;
    constexpr std::size_t longestOfDevice = std::size_t{1} << 26U;
    InputFile file(descriptor);
    const HANDLE handle = handleOf(descriptor);
    const unsigned long type = ::GetFileType(handle);
    if (type == FILE_TYPE_DISK) {
        BY_HANDLE_FILE_INFORMATION status{};
        if (::GetFileInformationByHandle(handle, &status) == 0) {
            noteLastError();
            return std::nullopt;
        }
        file.state_ = stateOf(status);
        return file;
    }
    // The system has no reason for what this program refuses on its own.
    errno = 0;
    const bool isDevice = type == FILE_TYPE_CHAR;
    if (isDevice && isInteractive(handle)) return std::nullopt;
    if (file.readStream(isDevice ? longestOfDevice : longestStream, !isDevice, false)) return file;
    errno = 0;
    return std::nullopt;
}

bool InputFile::readStream(std::size_t most, bool isPipe, bool /*isNamed*/) {
    constexpr std::size_t pieceSize = std::size_t{1} << 16U;
    isStream_ = true;
    for (;;) {
        makeRoom(pieceSize);
        unsigned long count = 0;
        const bool isRead = ::ReadFile(handleOf(descriptor_), stream_.data() + state_.size,
                                       pieceSize, &count, nullptr) != 0;
        // The writer of a pipe has closed it.
        const bool isBroken = !isRead && isPipe && ::GetLastError() == ERROR_BROKEN_PIPE;
        hasFailed_ = !isRead && !isBroken;
        if (!isRead || count == 0) return true;
        state_.size += count;
        if (state_.size > most) return false;
    }
}

std::optional<InputFile> InputFile::again() const {
    if (isStream_) return std::nullopt;
    const int descriptor = ::_dup(descriptor_);
    if (descriptor < 0) return std::nullopt;
    InputFile file(descriptor);
    file.state_ = state_;
    file.refusesEarlyEnd_ = refusesEarlyEnd_;
    return file;
}

InputFile::~InputFile() {
    if (descriptor_ >= 0) ::_close(descriptor_);
}

std::size_t InputFile::readAt(std::uint64_t offset, std::span<char> out) const {
    if (isStream_) return copyOfStream(offset, out);
    std::size_t size = 0;
    while (size < out.size()) {
        OVERLAPPED place{};
        place.Offset = static_cast<DWORD>(offset + size);
        place.OffsetHigh = static_cast<DWORD>((offset + size) >> 32U);
        unsigned long count = 0;
        const auto wanted = static_cast<DWORD>(std::min(out.size() - size, longestCall));
        if (::ReadFile(handleOf(descriptor_), out.data() + size, wanted, &count, &place) == 0) {
            hasFailed_ = hasFailed_ || ::GetLastError() != ERROR_HANDLE_EOF;
            noteEnd(offset + size);
            break;
        }
        if (count == 0) {
            noteEnd(offset + size);
            break;
        }
        size += count;
    }
    return size;
}

bool InputFile::isReadableByOthers() const {
    return false;
}

Reading InputFile::reading() const {
    if (hasFailed_) return Reading::Failed;
    if (isStream_) return Reading::Complete;
    BY_HANDLE_FILE_INFORMATION status{};
    const bool isSame = ::GetFileInformationByHandle(handleOf(descriptor_), &status) != 0 &&
                        stateOf(status) == state_;
    return isSame ? Reading::Complete : Reading::Changed;
}

std::optional<OutputFile> OutputFile::create(const std::string& path, FileMode mode) {
    const int descriptor = openDescriptor(path, GENERIC_WRITE, CREATE_ALWAYS);
    if (descriptor < 0) return std::nullopt;
    return OutputFile(descriptor, mode);
}

std::optional<OutputFile> OutputFile::createNew(const std::string& path, bool /*isPrivate*/) {
    // The rights are those that the folder gives.
    const int descriptor = openDescriptor(path, GENERIC_WRITE, CREATE_NEW);
    if (descriptor < 0) return std::nullopt;
    return OutputFile(descriptor, FileMode::Binary);
}

std::optional<OutputFile> OutputFile::ofStream(int descriptor) {
    const int own = ::_dup(descriptor);
    if (own < 0) return std::nullopt;
    return OutputFile(own, FileMode::Binary);
}

std::error_code OutputFile::takeAttributesOf(const std::string& /*path*/) const {
    return {};
}

FileIdentity OutputFile::identity() const {
    BY_HANDLE_FILE_INFORMATION status{};
    if (::GetFileInformationByHandle(handleOf(descriptor_), &status) == 0) return {};
    return stateOf(status).identity;
}

OutputFile::~OutputFile() {
    if (descriptor_ >= 0) ::_close(descriptor_);
}

namespace {

bool writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const std::string_view piece = bytes.substr(0, longestCall);
        const int count = ::_write(descriptor, piece.data(), static_cast<unsigned>(piece.size()));
        if (count < 0) return false;
        if (static_cast<std::size_t>(count) != piece.size()) {
            errno = ENOSPC;
            return false;
        }
        bytes.remove_prefix(piece.size());
    }
    return true;
}

/// Moves the beginning of `text` to `out`, with CR LF for each line feed, until one of them is used
/// up. Returns the bytes in `out`.
std::size_t translate(std::string_view& text, std::span<char> out) {
    constexpr std::size_t step = sizeof(std::uint64_t);
    const char* from = text.data();
    const char* const end = from + text.size();
    char* to = out.data();
    char* const full = to + out.size();
    while (from != end && full - to >= 2) {
        if (end - from >= std::ptrdiff_t{step} && full - to >= std::ptrdiff_t{step} &&
            bytesEqual(wordAt(from), '\n') == 0) {
            std::memcpy(to, from, step);
            from += step;
            to += step;
            continue;
        }
        // Up to the line feed that was found, or one byte where there are not eight.
        if (*from == '\n') *to++ = '\r';
        *to++ = *from++;
    }
    text.remove_prefix(static_cast<std::size_t>(from - text.data()));
    return static_cast<std::size_t>(to - out.data());
}

}  // namespace

bool OutputFile::write(std::string_view bytes) const {
    if (mode_ == FileMode::Binary) return writeAll(descriptor_, bytes);
    // The text mode of the runtime does the same, in smaller pieces and byte by byte. No memory is
    // needed: the file has been touched already.
    std::array<char, std::size_t{1} << 15U> piece;
    while (!bytes.empty()) {
        const std::size_t size = translate(bytes, piece);
        if (!writeAll(descriptor_, {piece.data(), size})) return false;
    }
    return true;
}

bool OutputFile::close() {
    return ::_close(std::exchange(descriptor_, -1)) == 0;
}

}  // namespace Platform
