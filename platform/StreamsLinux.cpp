#include "platform/Streams.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <initializer_list>

namespace Platform {

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

bool showsColor() {
    const char* const without = std::getenv("NO_COLOR");
    const char* const terminal = std::getenv("TERM");
    const bool isRefused = without != nullptr && *without != '\0';
    const bool isDumb = terminal == nullptr || std::string(terminal) == "dumb";
    return !isRefused && !isDumb && ::isatty(STDERR_FILENO) != 0;
}

std::error_code changeFolder(const std::string& path) {
    if (::chdir(path.c_str()) == 0) return {};
    return {errno, std::generic_category()};
}

}  // namespace Platform
