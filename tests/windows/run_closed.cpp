// Runs a program with some of its standard streams closed:  run_closed 012 program [argument ...]
// The digits are the numbers of the streams. A parent on Linux cannot do this: wine itself would
// use the descriptors.

#include <windows.h>

#include <string>
#include <string_view>

int wmain(int argumentCount, wchar_t** arguments);

int wmain(int argumentCount, wchar_t** arguments) {
    if (argumentCount < 3) return 99;
    const std::wstring_view closed = arguments[1];
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    const auto open = [closed](wchar_t digit, DWORD number) -> HANDLE {
        return closed.find(digit) == std::wstring_view::npos ? ::GetStdHandle(number) : nullptr;
    };
    startup.hStdInput = open(L'0', STD_INPUT_HANDLE);
    startup.hStdOutput = open(L'1', STD_OUTPUT_HANDLE);
    startup.hStdError = open(L'2', STD_ERROR_HANDLE);
    // No argument of the test needs quotes.
    std::wstring line;
    for (int i = 2; i < argumentCount; ++i)
        line += (i == 2 ? L"" : L" ") + std::wstring(arguments[i]);
    PROCESS_INFORMATION process{};
    if (::CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, DETACHED_PROCESS, nullptr,
                         nullptr, &startup, &process) == 0)
        return 98;
    ::WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 97;
    ::GetExitCodeProcess(process.hProcess, &code);
    return static_cast<int>(code);
}
