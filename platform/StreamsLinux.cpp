#include "platform/Streams.hpp"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

namespace Platform {

StreamGuard::StreamGuard() {
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

StreamGuard::~StreamGuard() = default;

bool showsColor(StandardStream stream) {
    const char* const without = std::getenv("NO_COLOR");
    const char* const terminal = std::getenv("TERM");
    const int descriptor = stream == StandardStream::Output ? STDOUT_FILENO : STDERR_FILENO;
    const bool isRefused = without != nullptr && *without != '\0';
    const bool isDumb = terminal == nullptr || std::string(terminal) == "dumb";
    return !isRefused && !isDumb && ::isatty(descriptor) != 0;
}

std::size_t terminalWidth() {
    constexpr std::size_t usual = 80;
    if (::isatty(STDOUT_FILENO) == 0) return 0;
    winsize size{};
    const bool isKnown = ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0;
    return isKnown ? size.ws_col : usual;
}

bool showsUnicode() {
    // The first of these that is set names the locale, POSIX.1-2017, section 8.2.
    for (const char* const name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* const locale = std::getenv(name);
        if (locale == nullptr || *locale == '\0') continue;
        return ::strcasestr(locale, "UTF-8") != nullptr || ::strcasestr(locale, "UTF8") != nullptr;
    }
    return false;
}

std::size_t readInput(std::span<char> bytes) {
    for (;;) {
        const ssize_t count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
        if (count >= 0) return static_cast<std::size_t>(count);
        if (errno != EINTR) return 0;
    }
}

std::error_code changeFolder(const std::string& path) {
    if (::chdir(path.c_str()) == 0) return {};
    return {errno, std::generic_category()};
}

}  // namespace Platform
