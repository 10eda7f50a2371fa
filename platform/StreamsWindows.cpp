#include "platform/Streams.hpp"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "platform/WideText.hpp"

namespace Platform {

namespace {

struct ConsoleStream {
    DWORD number;
    DWORD mode = 0;
    bool isConsole = false;
};

/// What the console was like before. Global, since the handler of an interrupt has no argument.
struct {
    UINT codePage = 0;  ///< 0 if there is no console
    std::array<ConsoleStream, 2> streams{ConsoleStream{STD_OUTPUT_HANDLE},
                                         ConsoleStream{STD_ERROR_HANDLE}};
} console;

void setConsoleBack() {
    for (const ConsoleStream& stream : console.streams)
        if (stream.isConsole) ::SetConsoleMode(::GetStdHandle(stream.number), stream.mode);
    if (console.codePage != 0) ::SetConsoleOutputCP(console.codePage);
}

BOOL WINAPI setBackBeforeTheEnd(DWORD /*event*/) {
    setConsoleBack();
    return FALSE;
}

/// The mode of a stream that is a console, or 0.
DWORD modeOf(StandardStream stream) {
    DWORD mode = 0;
    const bool isOutput = stream == StandardStream::Output;
    const HANDLE handle = ::GetStdHandle(isOutput ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
    return ::GetConsoleMode(handle, &mode) != 0 ? mode : 0;
}

}  // namespace

// The runtime itself marks a closed standard stream, which then refuses to be written to, and gives
// its descriptor to nobody else.
StreamGuard::StreamGuard() {
    console.codePage = ::GetConsoleOutputCP();
    if (console.codePage != 0) ::SetConsoleOutputCP(CP_UTF8);
    for (ConsoleStream& stream : console.streams) {
        const HANDLE handle = ::GetStdHandle(stream.number);
        stream.isConsole = ::GetConsoleMode(handle, &stream.mode) != 0;
        // Consoles before Windows 10 refuse this, and show no colors.
        if (stream.isConsole)
            ::SetConsoleMode(handle, stream.mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
    }
    ::SetConsoleCtrlHandler(&setBackBeforeTheEnd, TRUE);
}

StreamGuard::~StreamGuard() {
    // What is still in a buffer is in UTF-8.
    static_cast<void>(std::fflush(nullptr));
    setConsoleBack();
    ::SetConsoleCtrlHandler(&setBackBeforeTheEnd, FALSE);
}

bool showsColor(StandardStream stream) {
    const char* const without = std::getenv("NO_COLOR");
    const bool isRefused = without != nullptr && *without != '\0';
    return !isRefused && (modeOf(stream) & ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

std::size_t terminalWidth() {
    CONSOLE_SCREEN_BUFFER_INFO screen{};
    if (::GetConsoleScreenBufferInfo(::GetStdHandle(STD_OUTPUT_HANDLE), &screen) == 0) return 0;
    return static_cast<std::size_t>(screen.srWindow.Right - screen.srWindow.Left + 1);
}

bool showsUnicode() {
    // What a file or a pipe gets is read in the code page of the machine.
    const bool isConsole = modeOf(StandardStream::Output) != 0;
    return (isConsole ? ::GetConsoleOutputCP() : ::GetACP()) == CP_UTF8;
}

std::size_t readInput(std::span<char> bytes) {
    for (FILE* const stream : {stdin, stdout}) ::_setmode(::_fileno(stream), _O_BINARY);
    const int count = ::_read(::_fileno(stdin), bytes.data(), static_cast<unsigned>(bytes.size()));
    return count < 0 ? 0 : static_cast<std::size_t>(count);
}

std::error_code changeFolder(const std::string& path) {
    if (::SetCurrentDirectoryW(wideText(path).c_str()) != 0) return {};
    noteLastError();
    return {errno, std::generic_category()};
}

}  // namespace Platform
